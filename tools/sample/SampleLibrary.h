#pragma once

#include "tools/sample/SampleBackups.h"
#include "tools/sample/SampleCaches.h"
#include "tools/sample/SampleOptions.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quillbook::sample {

/// What was written, and where.
struct SampleReport {
    std::filesystem::path database;    ///< Library/Messages/chat.db
    std::filesystem::path attachments; ///< Library/Messages/Attachments
    std::filesystem::path contacts;    ///< contacts.vcf
    std::int64_t chatCount = 0;
    std::int64_t messageCount = 0;  ///< Rows that are no reactions.
    std::int64_t reactionCount = 0; ///< Rows of type 2000 and above.
    std::int64_t attachmentCount = 0;
    std::int64_t attachmentsOnDisk = 0; ///< A file of no bytes among them.
    std::int64_t attachmentsMissing = 0;
    /// The chat with the most attachments: its row id, guid and title.
    std::int64_t richestChatID = 0;
    std::string richestChatGUID;
    std::string richestChatTitle;
    std::vector<SampleBackup> backups;  ///< In the order in which they were asked for.
    std::optional<SampleCaches> caches; ///< With attachments of the richest chat.

    bool operator==(const SampleReport&) const = default;
};

/// Writes the library that the options describe, its backups and the caches. Blocks until all is written;
/// uses little memory whatever the counts. Throws SampleError, FileError and SQLiteError; a library, a backup
/// or caches that already stand there are not touched.
SampleReport writeSampleLibrary(const SampleOptions& options);

/// The report as a person reads it.
std::string describe(const SampleReport& report);

} // namespace quillbook::sample
