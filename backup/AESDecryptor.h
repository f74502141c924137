#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

struct evp_cipher_ctx_st;

namespace quillbook {

/// Decrypts whole AES blocks of 16 bytes, without padding. Use from one thread at a time.
class AESDecryptor {
public:
    enum class Mode {
        separate, ///< ECB: every block by itself.
        chained,  ///< CBC from an initialisation vector of zeros; the chain goes on from call to call.
    };

    static constexpr std::size_t blockSize = 16;

    /// Nothing for a key that is not of 16, 24 or 32 bytes.
    static std::optional<AESDecryptor> make(Mode mode, std::span<const std::uint8_t> key);

    /// Gives how many bytes now stand at the start of `output`, nothing on failure. A block that `input`
    /// leaves unfinished is kept for the next call, so `output` has room for one block more than `input`.
    std::optional<std::size_t> decrypt(std::span<const std::uint8_t> input, std::span<std::uint8_t> output);

private:
    struct ContextDeleter {
        void operator()(evp_cipher_ctx_st* context) const;
    };
    using Context = std::unique_ptr<evp_cipher_ctx_st, ContextDeleter>;

    explicit AESDecryptor(Context context);

    Context context_;
};

} // namespace quillbook
