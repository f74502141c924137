#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace quillbook::test {

/// What can change about one entry of a folder: kind, size, inode, time of the last change and contents.
struct EntrySnapshot {
    std::filesystem::file_type type = std::filesystem::file_type::none;
    std::uintmax_t inode = 0;
    std::filesystem::file_time_type modified;
    std::string contents;

    bool operator==(const EntrySnapshot&) const = default;
};

/// Every entry below a folder by its relative path, the folder itself not among them.
std::map<std::string, EntrySnapshot> snapshotOf(const std::filesystem::path& folder);

} // namespace quillbook::test
