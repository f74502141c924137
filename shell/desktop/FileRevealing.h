#pragma once

#include <filesystem>

namespace quillbook {

/// Shows files to the user in other programs. Main thread only; returns at once and reports nothing: a file
/// that is gone opens nothing.
class FileRevealing {
public:
    virtual ~FileRevealing() = default;
    /// Shows the file or folder selected in the file manager.
    virtual void reveal(const std::filesystem::path& file) = 0;
    /// Opens the file with the user's program for it; a web page with the default browser.
    virtual void open(const std::filesystem::path& file) = 0;
};

} // namespace quillbook
