#include "tools/backup/BackupCiphers.h"

#include "tools/writing/DeterministicRandom.h"
#include "tools/writing/SampleError.h"

#include <array>
#include <limits>

#include <openssl/evp.h>

namespace quillbook::sample {
namespace {

constexpr std::size_t cipherBlockBytes = 16;
constexpr std::size_t keyBytes = 32;

void require(bool succeeded, const char* what) {
    if (!succeeded) throw SampleError(SampleError::Reason::encryptionFailed, what);
}

} // namespace

Data deterministicBytes(std::uint64_t seed, std::string_view subject, std::size_t count) {
    DeterministicRandom random(seed, subject);
    Data bytes(count);
    for (auto& byte : bytes)
        byte = static_cast<std::uint8_t>(random.next() >> 56U);
    return bytes;
}

std::string sha1Hex(std::string_view text) {
    std::array<std::uint8_t, EVP_MAX_MD_SIZE> digest{};
    unsigned int length = 0;
    require(EVP_Digest(text.data(), text.size(), digest.data(), &length, EVP_sha1(), nullptr) == 1, "SHA-1");
    constexpr std::string_view digits = "0123456789abcdef";
    std::string hex;
    for (unsigned int index = 0; index < length; ++index) {
        hex += digits[digest[index] >> 4U];
        hex += digits[digest[index] & 0x0FU];
    }
    return hex;
}

Data derivedKey(std::span<const std::uint8_t> password, std::span<const std::uint8_t> salt,
                std::int64_t rounds, PasswordHash hash) {
    require(rounds >= 1 && rounds <= std::numeric_limits<int>::max(), "the rounds of the key derivation");
    Data key(keyBytes);
    const int result =
        PKCS5_PBKDF2_HMAC(password.empty() ? "" : reinterpret_cast<const char*>(password.data()),
                          static_cast<int>(password.size()), salt.data(), static_cast<int>(salt.size()),
                          static_cast<int>(rounds), hash == PasswordHash::sha1 ? EVP_sha1() : EVP_sha256(),
                          static_cast<int>(key.size()), key.data());
    require(result == 1, "PBKDF2");
    return key;
}

Data wrappedKey(std::span<const std::uint8_t> wrappingKey, std::span<const std::uint8_t> key) {
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                                  EVP_CIPHER_CTX_free);
    require(context != nullptr && wrappingKey.size() == keyBytes, "the wrapping key");
    EVP_CIPHER_CTX_set_flags(context.get(), EVP_CIPHER_CTX_FLAG_WRAP_ALLOW);
    Data wrapped(key.size() + 2 * cipherBlockBytes);
    int length = 0;
    require(EVP_EncryptInit_ex(context.get(), EVP_aes_256_wrap(), nullptr, wrappingKey.data(), nullptr) ==
                    1 &&
                EVP_EncryptUpdate(context.get(), wrapped.data(), &length, key.data(),
                                  static_cast<int>(key.size())) == 1,
            "key wrap");
    wrapped.resize(static_cast<std::size_t>(length));
    return wrapped;
}

void StreamEncryptor::ContextDeleter::operator()(evp_cipher_ctx_st* context) const {
    EVP_CIPHER_CTX_free(context);
}

StreamEncryptor::StreamEncryptor(std::span<const std::uint8_t> key, Padding padding)
    : context_(EVP_CIPHER_CTX_new()) {
    constexpr std::array<std::uint8_t, cipherBlockBytes> zeros{};
    require(context_ != nullptr && key.size() == keyBytes, "the key of a file");
    require(EVP_EncryptInit_ex(context_.get(), EVP_aes_256_cbc(), nullptr, key.data(), zeros.data()) == 1,
            "AES");
    EVP_CIPHER_CTX_set_padding(context_.get(), padding == Padding::wholeBlocks ? 1 : 0);
}

StreamEncryptor::~StreamEncryptor() = default;

std::span<const std::uint8_t> StreamEncryptor::update(std::span<const std::uint8_t> plaintext) {
    if (output_.size() < plaintext.size() + cipherBlockBytes)
        output_.resize(plaintext.size() + cipherBlockBytes);
    int length = 0;
    require(EVP_EncryptUpdate(context_.get(), output_.data(), &length, plaintext.data(),
                              static_cast<int>(plaintext.size())) == 1,
            "AES");
    return std::span(output_).first(static_cast<std::size_t>(length));
}

std::span<const std::uint8_t> StreamEncryptor::finish() {
    if (output_.size() < cipherBlockBytes) output_.resize(cipherBlockBytes);
    int length = 0;
    require(EVP_EncryptFinal_ex(context_.get(), output_.data(), &length) == 1, "AES");
    return std::span(output_).first(static_cast<std::size_t>(length));
}

} // namespace quillbook::sample
