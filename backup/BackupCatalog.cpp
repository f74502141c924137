#include "backup/BackupCatalog.h"

#include "backup/BackupPropertyList.h"
#include "core/records/DescribedError.h"
#include "core/text/UTF8.h"

#include <algorithm>
#include <limits>
#include <system_error>

namespace quillbook {
namespace {

namespace fs = std::filesystem;

/// By name, so that backups of the same moment stand in the same order on every file system. Links to folders
/// count as folders: people link backups here.
std::vector<fs::path> visibleFolders(const fs::path& root) {
    std::vector<fs::path> folders;
    std::error_code failed;
    for (fs::directory_iterator entry(root, failed), end; !failed && entry != end; entry.increment(failed)) {
        std::error_code unknown;
        const bool isHidden = entry->path().filename().native().starts_with('.');
        if (!isHidden && entry->is_directory(unknown)) folders.push_back(entry->path());
    }
    std::sort(folders.begin(), folders.end(),
              [](const fs::path& one, const fs::path& other) { return one.native() < other.native(); });
    return folders;
}

/// Nothing where the file is missing, unreadable, no property list or no dictionary.
std::optional<PropertyList> dictionaryIn(const fs::path& file) {
    try {
        PropertyList list = readPropertyListFile(file);
        return list.isDictionary() ? std::optional(std::move(list)) : std::nullopt;
    } catch (const DescribedError&) {
        return std::nullopt; // One odd backup never hides the others.
    }
}

bool isEncrypted(const PropertyList& manifest) {
    return manifest.boolean("IsEncrypted").value_or(manifest.hasKey("ManifestKey"));
}

void describeDevice(DeviceBackup& backup, const PropertyList& information) {
    backup.deviceModel = information.string("Product Type");
    backup.productVersion = information.string("Product Version");
    for (const char* key : {"Device Name", "Display Name"}) {
        if (auto name = information.string(key)) {
            backup.deviceName = std::move(*name);
            return;
        }
    }
}

/// Nothing for a folder that is no backup, or one in an old format or still being written.
std::optional<DeviceBackup> backupIn(const fs::path& folder) {
    std::error_code unknown;
    if (!fs::is_regular_file(fs::symlink_status(folder / "Manifest.db", unknown))) return std::nullopt;
    const auto manifest = dictionaryIn(folder / "Manifest.plist");
    if (!manifest) return std::nullopt;
    DeviceBackup backup{.id = repairedUTF8(folder.filename().native()), .url = folder};
    backup.deviceName = backup.id;
    backup.isEncrypted = isEncrypted(*manifest);
    if (const auto information = dictionaryIn(folder / "Info.plist")) {
        describeDevice(backup, *information);
        backup.lastBackupDate = information->date("Last Backup Date");
    }
    if (!backup.lastBackupDate) backup.lastBackupDate = manifest->date("Date");
    return backup;
}

/// An absent date counts as the far past.
Date placeInTime(const DeviceBackup& backup) {
    return backup.lastBackupDate.value_or(Date{-std::numeric_limits<double>::infinity()});
}

} // namespace

BackupCatalog BackupCatalog::below(const fs::path& home) {
    return BackupCatalog(home / "Library" / "Application Support" / "MobileSync" / "Backup");
}

std::vector<DeviceBackup> BackupCatalog::backups() const {
    std::vector<DeviceBackup> found;
    for (const fs::path& folder : visibleFolders(backupRoot_)) {
        if (auto backup = backupIn(folder)) found.push_back(std::move(*backup));
    }
    std::stable_sort(found.begin(), found.end(), [](const DeviceBackup& one, const DeviceBackup& other) {
        return placeInTime(one) > placeInTime(other);
    });
    return found;
}

} // namespace quillbook
