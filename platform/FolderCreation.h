#pragma once

#include <filesystem>

namespace quillbook {

/// Makes a folder with those that lead to it, as far as they are not there yet. Throws FileError.
void createFolders(const std::filesystem::path& folder);

} // namespace quillbook
