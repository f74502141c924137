#include "platform/FileError.h"
#include "tools/backup/BackupWriter.h"
#include "tools/backup/DeviceDatabase.h"

#include <algorithm>
#include <vector>

namespace quillbook::sample {
namespace {

constexpr const char* databaseDomain = "HomeDomain";
constexpr const char* databasePath = "Library/SMS/sms.db";
constexpr const char* attachmentsDomain = "MediaDomain";
constexpr const char* attachmentsPath = "Library/SMS/Attachments/";

/// In an order of their own: that of the file system differs from place to place.
std::vector<std::filesystem::path> filesBelow(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    std::error_code code;
    if (!std::filesystem::exists(folder, code)) return files;
    for (std::filesystem::recursive_directory_iterator entry(folder, code), end; !code && entry != end;
         entry.increment(code)) {
        if (entry->symlink_status().type() == std::filesystem::file_type::regular)
            files.push_back(entry->path());
    }
    if (code) throw FileError(FileError::Action::list, folder, code);
    std::sort(files.begin(), files.end());
    return files;
}

void addAttachments(BackupWriter& writer, const std::filesystem::path& folder) {
    std::error_code code;
    for (const std::filesystem::path& file : filesBelow(folder)) {
        BackupFileOptions options;
        options.hasKey = std::filesystem::file_size(file, code) > 0;
        writer.addFile(attachmentsDomain, attachmentsPath + file.lexically_relative(folder).generic_string(),
                       file, options);
    }
}

/// Of the attachments that the database knows and the library lacks, every other one is in the index all the
/// same, the first among them.
void listMissingAttachments(BackupWriter& writer, const DeviceDatabase& database,
                            const std::filesystem::path& folder) {
    bool isListed = true;
    database.forEachAttachment([&](std::string_view relativePath, std::int64_t size) {
        std::error_code code;
        if (std::filesystem::exists(std::filesystem::symlink_status(folder / relativePath, code))) return;
        BackupFileOptions options;
        options.hasStoredFile = false;
        options.claimedSize = size;
        if (isListed)
            writer.addBytes(attachmentsDomain, attachmentsPath + std::string(relativePath), "", options);
        isListed = !isListed;
    });
}

} // namespace

void addMessagesLibrary(BackupWriter& writer, const std::filesystem::path& messagesFolder) {
    const DeviceDatabase database(messagesFolder / "chat.db", writer.workingFolder(), writer.seed());
    writer.addFile(databaseDomain, databasePath, database.file());
    std::error_code code;
    for (const char* suffix : {"-wal", "-shm"}) {
        const std::filesystem::path companion = database.companion(suffix);
        if (std::filesystem::exists(companion, code))
            writer.addFile(databaseDomain, std::string(databasePath) + suffix, companion);
    }
    addAttachments(writer, messagesFolder / "Attachments");
    listMissingAttachments(writer, database, messagesFolder / "Attachments");
}

} // namespace quillbook::sample
