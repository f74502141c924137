#pragma once

#include <filesystem>

namespace quillbook {

/// Gives a folder another name within its file system, in one step. What stands at the new name is never
/// replaced, an empty folder included. Throws FileError, and the folder then stands where it stood.
void moveFolder(const std::filesystem::path& folder, const std::filesystem::path& newPlace);

/// The same for a file.
void moveFile(const std::filesystem::path& file, const std::filesystem::path& newPlace);

} // namespace quillbook
