#pragma once

#include "core/interfaces/DeviceBackup.h"

#include <filesystem>
#include <vector>

namespace quillbook {

/// Lists the device backups below one folder. A plain value; safe to call from any thread, slow enough to be
/// kept off the main one.
class BackupCatalog {
public:
    explicit BackupCatalog(std::filesystem::path backupRoot) : backupRoot_(std::move(backupRoot)) {}
    /// Where backups lie in a home folder: "Library/Application Support/MobileSync/Backup".
    static BackupCatalog below(const std::filesystem::path& home);

    /// Newest first. Never throws: what cannot be read is left out.
    std::vector<DeviceBackup> backups() const;

private:
    std::filesystem::path backupRoot_;
};

} // namespace quillbook
