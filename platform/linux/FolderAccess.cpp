#include "platform/FolderAccess.h"

#include <unistd.h>

namespace quillbook {

bool isWritableFolder(const std::filesystem::path& folder) {
    std::error_code failure;
    return std::filesystem::is_directory(folder, failure) && ::access(folder.c_str(), W_OK | X_OK) == 0;
}

} // namespace quillbook
