#include "platform/FolderMove.h"

#include "platform/FileError.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>

namespace quillbook {
namespace {

/// For file systems that cannot rename and refuse to replace in one step: rename(2) alone would replace an
/// empty folder.
void moveFolderWhereNothingStands(const std::filesystem::path& folder,
                                  const std::filesystem::path& newPlace) {
    std::error_code reason;
    const auto standing = std::filesystem::symlink_status(newPlace, reason);
    if (std::filesystem::exists(standing)) reason = std::make_error_code(std::errc::file_exists);
    if (standing.type() != std::filesystem::file_type::not_found) {
        throw FileError(FileError::Action::rename, newPlace, reason);
    }
    if (std::rename(folder.c_str(), newPlace.c_str()) != 0) {
        throw FileError::fromErrno(FileError::Action::rename, newPlace);
    }
}

} // namespace

void moveFolder(const std::filesystem::path& folder, const std::filesystem::path& newPlace) {
    if (renameat2(AT_FDCWD, folder.c_str(), AT_FDCWD, newPlace.c_str(), RENAME_NOREPLACE) == 0) return;
    // renameat2(2): EINVAL where the file system does not know the flag, ENOSYS where the kernel does not
    // know the call.
    if (errno != EINVAL && errno != ENOSYS) throw FileError::fromErrno(FileError::Action::rename, newPlace);
    moveFolderWhereNothingStands(folder, newPlace);
}

} // namespace quillbook
