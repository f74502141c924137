#pragma once

#include <filesystem>
#include <vector>

namespace quillbook {

/// Where the application's resources may lie, in the order in which to look: those of the installed
/// application
/// ("share/quillbook" beside the folder of the program), then those of the tree it was built from.
std::vector<std::filesystem::path> resourceFolders();

} // namespace quillbook
