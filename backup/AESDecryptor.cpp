#include "backup/AESDecryptor.h"

#include <array>
#include <cassert>
#include <limits>
#include <utility>

#include <openssl/evp.h>

namespace quillbook {
namespace {

/// Looked up once: by itself, libcrypto would do so for each file.
const EVP_CIPHER* fetchedCipher(const char* name) {
    // Lives as long as the process, like the library's own tables.
    return EVP_CIPHER_fetch(nullptr, name, nullptr);
}

/// Null for a key length that AES does not have.
const EVP_CIPHER* cipherOf(AESDecryptor::Mode mode, std::size_t keySize) {
    static const std::array<std::array<const EVP_CIPHER*, 3>, 2> ciphers = {{
        {fetchedCipher("AES-128-CBC"), fetchedCipher("AES-192-CBC"), fetchedCipher("AES-256-CBC")},
        {fetchedCipher("AES-128-ECB"), fetchedCipher("AES-192-ECB"), fetchedCipher("AES-256-ECB")},
    }};
    if (keySize != 16 && keySize != 24 && keySize != 32) return nullptr;
    return ciphers.at(mode == AESDecryptor::Mode::chained ? 0 : 1).at(keySize / 8 - 2);
}

} // namespace

void AESDecryptor::ContextDeleter::operator()(evp_cipher_ctx_st* context) const {
    EVP_CIPHER_CTX_free(context);
}

AESDecryptor::AESDecryptor(Context context) : context_(std::move(context)) {}

std::optional<AESDecryptor> AESDecryptor::make(Mode mode, std::span<const std::uint8_t> key) {
    constexpr std::array<std::uint8_t, blockSize> zeros{};
    const EVP_CIPHER* cipher = cipherOf(mode, key.size());
    if (cipher == nullptr) return std::nullopt;
    Context context(EVP_CIPHER_CTX_new());
    const auto* vector = mode == Mode::chained ? zeros.data() : nullptr;
    if (!context || EVP_DecryptInit_ex(context.get(), cipher, nullptr, key.data(), vector) != 1 ||
        EVP_CIPHER_CTX_set_padding(context.get(), 0) != 1) {
        return std::nullopt;
    }
    return AESDecryptor(std::move(context));
}

std::optional<std::size_t> AESDecryptor::decrypt(std::span<const std::uint8_t> input,
                                                 std::span<std::uint8_t> output) {
    assert(output.size() >= input.size() + blockSize || input.size() % blockSize == 0);
    constexpr auto greatestInput = static_cast<std::size_t>(std::numeric_limits<int>::max()) - blockSize;
    if (input.size() > greatestInput) return std::nullopt;
    int delivered = 0;
    if (EVP_DecryptUpdate(context_.get(), output.data(), &delivered, input.data(),
                          static_cast<int>(input.size())) != 1) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(delivered);
}

} // namespace quillbook
