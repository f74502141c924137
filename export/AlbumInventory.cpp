#include "export/AlbumInventory.h"

#include "platform/FileError.h"

#include <algorithm>

namespace quillbook {

void requireEveryFile(const ArchiveConversation& conversation, const std::vector<std::string>& written,
                      const std::vector<ManifestFile>& files, const std::filesystem::path& root) {
    const auto require = [&](const std::string& path) {
        const std::filesystem::path place = root / path;
        std::error_code failure;
        // The list leaves every file of the manifest's name out, also an attachment that bears it.
        if (place.filename() == manifestFileName && std::filesystem::is_regular_file(place, failure)) return;
        const auto found = std::lower_bound(
            files.begin(), files.end(), path,
            [](const ManifestFile& file, const std::string& wanted) { return file.path < wanted; });
        if (found != files.end() && found->path == path) return;
        throw FileError(FileError::Action::read, place,
                        std::make_error_code(std::errc::no_such_file_or_directory));
    };
    for (const std::string& path : written)
        require(path);
    for (const ArchiveParticipant& participant : conversation.participants) {
        if (participant.avatarPath) require(*participant.avatarPath);
    }
    for (const ArchiveMessage& message : conversation.messages) {
        for (const ArchiveAttachment& attachment : message.attachments) {
            if (attachment.archivePath) require(*attachment.archivePath);
        }
    }
}

} // namespace quillbook
