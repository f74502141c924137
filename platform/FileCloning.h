#pragma once

#include <filesystem>

namespace quillbook {

/// Makes a copy-on-write clone of a file at a place where nothing stands. False, and nothing left behind,
/// where the file system has no clones, the places are on two volumes, or anything fails.
bool cloneFile(const std::filesystem::path& source, const std::filesystem::path& destination);

} // namespace quillbook
