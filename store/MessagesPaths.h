#pragma once

#include <filesystem>

namespace quillbook {

/// Where a Messages library lies.
struct MessagesPaths {
    std::filesystem::path messagesRoot;

    /// "Library/Messages" below a home folder: where the Mac has it, and where people put a copy of it.
    static MessagesPaths below(const std::filesystem::path& home);
    std::filesystem::path database() const;
};

} // namespace quillbook
