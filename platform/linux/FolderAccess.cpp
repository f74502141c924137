#include "platform/FolderAccess.h"

#include <sys/stat.h>
#include <unistd.h>

namespace quillbook {

bool isWritableFolder(const std::filesystem::path& folder) {
    std::error_code failure;
    return std::filesystem::is_directory(folder, failure) && ::access(folder.c_str(), W_OK | X_OK) == 0;
}

bool isOwnFolder(const std::filesystem::path& folder) {
    struct stat status {};
    return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
}

} // namespace quillbook
