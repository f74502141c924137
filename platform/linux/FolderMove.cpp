#include "platform/FolderMove.h"

#include "platform/FileError.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>

namespace quillbook {
namespace {

/// For file systems that cannot rename and refuse to replace in one step: rename(2) alone would replace a
/// file or an empty folder.
void moveWhereNothingStands(const std::filesystem::path& entry, const std::filesystem::path& newPlace) {
    std::error_code reason;
    const auto standing = std::filesystem::symlink_status(newPlace, reason);
    if (std::filesystem::exists(standing)) reason = std::make_error_code(std::errc::file_exists);
    if (standing.type() != std::filesystem::file_type::not_found) {
        throw FileError(FileError::Action::rename, newPlace, reason);
    }
    if (std::rename(entry.c_str(), newPlace.c_str()) != 0) {
        throw FileError::fromErrno(FileError::Action::rename, newPlace);
    }
}

void moveEntry(const std::filesystem::path& entry, const std::filesystem::path& newPlace) {
    if (renameat2(AT_FDCWD, entry.c_str(), AT_FDCWD, newPlace.c_str(), RENAME_NOREPLACE) == 0) return;
    // renameat2(2): EINVAL where the file system does not know the flag, ENOSYS where the kernel does not
    // know the call.
    if (errno != EINVAL && errno != ENOSYS) throw FileError::fromErrno(FileError::Action::rename, newPlace);
    moveWhereNothingStands(entry, newPlace);
}

} // namespace

void moveFolder(const std::filesystem::path& folder, const std::filesystem::path& newPlace) {
    moveEntry(folder, newPlace);
}

void moveFile(const std::filesystem::path& file, const std::filesystem::path& newPlace) {
    moveEntry(file, newPlace);
}

} // namespace quillbook
