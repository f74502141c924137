#include "export/StagingFolder.h"

#include "platform/FileError.h"
#include "platform/FolderCreation.h"
#include "platform/FolderMove.h"
#include "platform/UUID.h"

#include <string>
#include <vector>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using Action = FileError::Action;

constexpr const char* namePrefix = ".quillbook-staging-";

} // namespace

StagingFolder::StagingFolder(const fs::path& destination) : path_(destination / (namePrefix + uuidText())) {
    createFolders(destination);
    std::error_code failure;
    const bool isNew = fs::create_directory(path_, failure);
    if (!isNew && !failure) failure = std::make_error_code(std::errc::file_exists);
    if (failure) throw FileError(Action::createFolder, path_, failure);
}

StagingFolder::~StagingFolder() {
    std::error_code ignored;
    if (!isMoved_) fs::remove_all(path_, ignored);
}

void StagingFolder::requireInPlace() const {
    std::error_code failure;
    if (fs::is_directory(fs::symlink_status(path_, failure))) return;
    if (!failure) failure = std::make_error_code(std::errc::not_a_directory);
    throw FileError(Action::write, path_, failure);
}

void StagingFolder::moveTo(const fs::path& album) {
    moveFolder(path_, album);
    isMoved_ = true;
}

void removeStaleStagingFolders(const fs::path& destination) {
    std::vector<fs::path> stale;
    std::error_code ended;
    for (fs::directory_iterator entry(destination, ended), end; !ended && entry != end;
         entry.increment(ended)) {
        if (entry->path().filename().native().starts_with(namePrefix)) stale.push_back(entry->path());
    }
    // Removed after the listing, which a removal could disturb. Symbolic links are removed, not followed.
    for (const fs::path& folder : stale) {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
}

} // namespace quillbook
