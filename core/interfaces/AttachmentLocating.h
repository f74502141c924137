#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace quillbook {

/// Turns the attachment paths that a database stores into files of this machine. All trouble becomes nothing.
class AttachmentLocating {
public:
    virtual ~AttachmentLocating() = default;
    virtual std::optional<std::filesystem::path> locate(const std::string& storedPath) = 0;
    /// A file that `locate` gave is no longer needed.
    virtual void release(const std::filesystem::path& file) = 0;
};

} // namespace quillbook
