#pragma once

#include "tools/sample/SampleOptions.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quillbook::sample {

/// One device backup that was written.
struct SampleBackup {
    std::filesystem::path folder;
    std::string deviceName;
    BackupKind kind = BackupKind::plain;

    bool operator==(const SampleBackup&) const = default;
};

/// Where a backup of that kind goes, below "Library/Application Support/MobileSync/Backup" of the home
/// folder. The identifier follows from the seed and the kind.
std::filesystem::path sampleBackupFolder(const SampleOptions& options, BackupKind kind);

/// Makes the backups that the options ask for out of the library that they have written. Throws SampleError
/// and FileError.
std::vector<SampleBackup> writeSampleBackups(const SampleOptions& options,
                                             const std::filesystem::path& messagesFolder);

} // namespace quillbook::sample
