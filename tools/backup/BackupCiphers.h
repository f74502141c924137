#pragma once

#include "core/records/ConversationSummary.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

struct evp_cipher_ctx_st;

namespace quillbook::sample {

/// Bytes that follow from the seed alone; each subject has its own.
Data deterministicBytes(std::uint64_t seed, std::string_view subject, std::size_t count);

/// SHA-1 in lower-case hexadecimal digits.
std::string sha1Hex(std::string_view text);

enum class PasswordHash { sha1, sha256 };

/// PBKDF2 of RFC 8018 with HMAC; 32 bytes. Throws SampleError.
Data derivedKey(std::span<const std::uint8_t> password, std::span<const std::uint8_t> salt,
                std::int64_t rounds, PasswordHash hash);

/// RFC 3394 with its default initial value: 8 bytes more than `key`. Throws SampleError.
Data wrappedKey(std::span<const std::uint8_t> wrappingKey, std::span<const std::uint8_t> key);

/// AES-256 in CBC mode from an initialisation vector of zeros. Throws SampleError.
class StreamEncryptor {
public:
    enum class Padding {
        none,        ///< The bytes fill whole blocks.
        wholeBlocks, ///< RFC 5652, section 6.3.
    };

    StreamEncryptor(std::span<const std::uint8_t> key, Padding padding);
    ~StreamEncryptor();
    StreamEncryptor(const StreamEncryptor&) = delete;
    StreamEncryptor& operator=(const StreamEncryptor&) = delete;

    /// The ciphertext stands until the next call.
    std::span<const std::uint8_t> update(std::span<const std::uint8_t> plaintext);
    std::span<const std::uint8_t> finish();

private:
    struct ContextDeleter {
        void operator()(evp_cipher_ctx_st* context) const;
    };
    std::unique_ptr<evp_cipher_ctx_st, ContextDeleter> context_;
    Data output_;
};

} // namespace quillbook::sample
