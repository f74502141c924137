#pragma once

#include <filesystem>

namespace quillbook {

/// Makes a folder with those that lead to it, as far as they are not there yet. Throws FileError.
void createFolders(const std::filesystem::path& folder);

/// Makes one folder, where nothing stands yet, that nobody but the owner may enter: octal 700 from the moment
/// it exists, whatever the umask. Throws FileError.
void createPrivateFolder(const std::filesystem::path& folder);

} // namespace quillbook
