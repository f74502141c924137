#include "platform/FileError.h"
#include "platform/FolderCreation.h"

#include <sys/stat.h>

namespace quillbook {

void createPrivateFolder(const std::filesystem::path& folder) {
    constexpr mode_t ownerAlone = 0700;
    if (::mkdir(folder.c_str(), ownerAlone) != 0) {
        throw FileError::fromErrno(FileError::Action::createFolder, folder);
    }
    // A umask can only have taken rights away.
    static_cast<void>(::chmod(folder.c_str(), ownerAlone));
}

} // namespace quillbook
