#include "export/FileHash.h"

#include "core/records/Cancellation.h"
#include "core/text/Localization.h"
#include "platform/FileReader.h"

#include <array>
#include <string_view>

#include <openssl/evp.h>

namespace quillbook {
namespace {

constexpr std::size_t digestSize = 32;

void require(int result) {
    if (result != 1) throw DigestError();
}

std::string hexadecimal(std::span<const std::uint8_t> bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes) {
        text += digits[byte >> 4U];
        text += digits[byte & 0x0FU];
    }
    return text;
}

} // namespace

std::string DigestError::description() const {
    return localized("This system cannot compute SHA-256 digests.");
}

SHA256::SHA256() : context_(EVP_MD_CTX_new()) {
    if (!context_) throw DigestError();
    require(EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr));
}

void SHA256::ContextDeleter::operator()(evp_md_ctx_st* context) const {
    EVP_MD_CTX_free(context);
}

void SHA256::update(std::span<const std::uint8_t> bytes) {
    require(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()));
}

std::string SHA256::hex() {
    std::array<std::uint8_t, digestSize> digest{};
    require(EVP_DigestFinal_ex(context_.get(), digest.data(), nullptr));
    return hexadecimal(digest);
}

std::string hashFile(const std::filesystem::path& file, const std::stop_token& stop) {
    FileReader reader(file);
    SHA256 digest;
    for (auto block = reader.next(); !block.empty(); block = reader.next()) {
        throwIfCancelled(stop);
        digest.update(block);
    }
    return digest.hex();
}

} // namespace quillbook
