#pragma once

#include "core/records/DescribedError.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <stop_token>
#include <string>

struct evp_md_ctx_st;

namespace quillbook {

/// The system's cryptographic library refuses to make SHA-256 digests.
class DigestError final : public DescribedError {
public:
    std::string description() const override;
};

/// The digest SHA-256 (FIPS 180-4) of bytes that come piece by piece. Use from one thread at a time.
class SHA256 {
public:
    /// Throws DigestError.
    SHA256();

    void update(std::span<const std::uint8_t> bytes);
    /// 64 lower-case hexadecimal digits. Ends the digest: call it once, last.
    std::string hex();

private:
    struct ContextDeleter {
        void operator()(evp_md_ctx_st* context) const;
    };
    std::unique_ptr<evp_md_ctx_st, ContextDeleter> context_;
};

/// The digest of a file's contents, read block by block. Throws FileError, or CancellationError within one
/// block of a request to stop.
std::string hashFile(const std::filesystem::path& file, const std::stop_token& stop);

} // namespace quillbook
