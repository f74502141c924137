#include "backup/BackupPropertyList.h"

#include "platform/FileError.h"
#include "platform/FileReader.h"

#include <system_error>

namespace quillbook {

PropertyList readPropertyListFile(const std::filesystem::path& file) {
    // Asked first, so that a sparse file of terabytes costs nothing; where it cannot be told, reading says
    // why.
    std::error_code unknown;
    const auto status = std::filesystem::symlink_status(file, unknown);
    if (std::filesystem::is_symlink(status)) // It could lead out of the backup.
        throw FileError(FileError::Action::open, file,
                        std::make_error_code(std::errc::too_many_symbolic_link_levels));
    if (std::filesystem::is_regular_file(status)) {
        const auto size = std::filesystem::file_size(file, unknown);
        if (!unknown && size > longestBackupPropertyList)
            throw FileError(FileError::Action::read, file, std::make_error_code(std::errc::file_too_large));
    }
    const std::string bytes = readWholeFile(file, longestBackupPropertyList);
    return {bytes, file.filename().string(), longestBackupPropertyList};
}

} // namespace quillbook
