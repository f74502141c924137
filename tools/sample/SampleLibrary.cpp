#include "tools/sample/SampleLibrary.h"

#include "platform/FileError.h"
#include "tools/sample/AttachmentShelf.h"
#include "tools/sample/LibraryTally.h"
#include "tools/sample/LibraryWriter.h"
#include "tools/sample/MeasuringLibrary.h"
#include "tools/sample/VCardWriter.h"
#include "tools/sample/WrittenLibrary.h"
#include "tools/writing/SampleError.h"

#include <fmt/format.h>

namespace quillbook::sample {
namespace {

/// Makes the folder of the library; nothing may stand there yet.
std::filesystem::path newMessagesFolder(const std::filesystem::path& home) {
    const std::filesystem::path folder = home / "Library" / "Messages";
    std::error_code code;
    for (const char* name : {"chat.db", "Attachments"}) {
        if (std::filesystem::exists(std::filesystem::symlink_status(folder / name, code))) {
            throw SampleError(SampleError::Reason::libraryExists, folder.string());
        }
    }
    std::filesystem::create_directories(folder, code);
    if (code) throw FileError(FileError::Action::createFolder, folder, code);
    return folder;
}

/// Before anything is written.
void requireNoBackups(const SampleOptions& options) {
    std::error_code code;
    for (const BackupKind kind : options.backups) {
        const std::filesystem::path folder = sampleBackupFolder(options, kind);
        if (std::filesystem::exists(std::filesystem::symlink_status(folder, code)))
            throw SampleError(SampleError::Reason::backupExists, folder.string());
    }
}

/// Last of all: the device, and so its backup, still has what Messages in iCloud took off this machine.
void moveToCaches(const SampleOptions& options, SampleReport& report) {
    report.caches = writeSampleCaches(options, report.database, report.richestChatID);
    const auto count = static_cast<std::int64_t>(report.caches->attachments.size());
    report.attachmentsOnDisk -= count;
    report.attachmentsMissing += count;
}

} // namespace

SampleReport writeSampleLibrary(const SampleOptions& options) {
    requireNoBackups(options);
    if (options.hasCaches) requireNoCaches(options.home);
    const std::filesystem::path folder = newMessagesFolder(options.home);
    SampleReport report;
    report.database = folder / "chat.db";
    report.attachments = folder / "Attachments";
    report.contacts = options.home / "contacts.vcf";

    LibraryTally tally;
    LibraryWriter writer(report.database, options.seed);
    AttachmentShelf shelf(folder, options.seed, options.attachmentCount);
    const bool isForMeasuring = options.isOneChat || options.messageCount >= bulkMessageCount;
    (isForMeasuring ? writeMeasuringLibrary : writeWrittenLibrary)(options, writer, shelf, tally);
    writer.finish();
    writeAddressBook(report.contacts);

    tally.fill(report);
    report.attachmentsOnDisk = shelf.onDisk();
    report.attachmentsMissing = report.attachmentCount - shelf.onDisk();
    report.backups = writeSampleBackups(options, folder);
    if (options.hasCaches) moveToCaches(options, report);
    return report;
}

std::string describe(const SampleReport& report) {
    std::string words = fmt::format(
        "{}\n{} chats, {} messages, {} reactions, {} attachments ({} on the disk, {} missing)\n"
        "Richest chat: {} ({}, {})\nAddress book: {}\n",
        report.database.string(), report.chatCount, report.messageCount, report.reactionCount,
        report.attachmentCount, report.attachmentsOnDisk, report.attachmentsMissing, report.richestChatTitle,
        report.richestChatID, report.richestChatGUID, report.contacts.string());
    for (const SampleBackup& backup : report.backups) {
        words +=
            fmt::format("Backup of {} ({}): {}\n", backup.deviceName,
                        backup.kind == BackupKind::encrypted ? "encrypted" : "plain", backup.folder.string());
    }
    if (report.caches) words += describe(*report.caches);
    return words;
}

} // namespace quillbook::sample
