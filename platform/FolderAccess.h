#pragma once

#include <filesystem>

namespace quillbook {

/// Whether this process may make entries in the folder, as far as the system tells without trying. False for
/// what is no folder.
bool isWritableFolder(const std::filesystem::path& folder);

/// Whether it is a real folder, not a link to one, and belongs to the user of this process.
bool isOwnFolder(const std::filesystem::path& folder);

} // namespace quillbook
