#include "platform/FolderCreation.h"

#include "platform/FileError.h"

namespace quillbook {

void createFolders(const std::filesystem::path& folder) {
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    if (failure) throw FileError(FileError::Action::createFolder, folder, failure);
}

} // namespace quillbook
