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
    /// For a question about a file alone: one whose presence and emptiness are those of the file that
    /// `locate` would give, found without preparing that. It needs no release.
    virtual std::optional<std::filesystem::path> probe(const std::string& storedPath) {
        return locate(storedPath);
    }
    /// A file that `locate` gave is no longer needed.
    virtual void release(const std::filesystem::path& file) = 0;
};

} // namespace quillbook
