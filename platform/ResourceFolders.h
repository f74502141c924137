#pragma once

#include <filesystem>
#include <vector>

namespace quillbook {

/// Where the application's resources may lie, in the order in which to look. On Linux "share/quillbook"
/// beside the folder of the program, as an installation has it; the build tree has the same layout.
std::vector<std::filesystem::path> resourceFolders();

} // namespace quillbook
