#pragma once

#include "core/records/ConversationSummary.h"
#include "core/records/DescribedError.h"
#include "store/sqlite/SQLiteDatabase.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace quillbook {

/// One file of a backup, as its index has it.
struct ManifestEntry {
    std::string fileID; ///< 40 hexadecimal digits of either case.
    std::string domain; ///< As in "HomeDomain" or "MediaDomain".
    std::string relativePath;
    std::int64_t flags = 0;
    Data fileBlob; ///< A keyed archive; `fileRecord` reads it.

    bool operator==(const ManifestEntry&) const = default;
};

/// An index names a stored file by something else than 40 hexadecimal digits.
class ManifestError final : public DescribedError {
public:
    explicit ManifestError(std::string malformedFileID);
    std::string description() const override;

    std::string malformedFileID;
};

/// Finds the files of a backup by their domain and path. Safe to call from any thread.
class BackupManifest {
public:
    /// `database` is the readable Manifest.db, a decrypted copy where the backup is encrypted.
    BackupManifest(std::shared_ptr<SQLiteDatabase> database, std::filesystem::path backupURL);

    /// Nothing for a file that the backup does not list. Case counts. Throws SQLiteError and ManifestError.
    std::optional<ManifestEntry> entry(const std::string& domain, const std::string& relativePath) const;
    /// Where the file of an entry lies in the backup, whether or not it exists.
    std::filesystem::path storedFile(const ManifestEntry& entry) const;

    const std::filesystem::path& backupURL() const { return backupURL_; }

private:
    std::shared_ptr<SQLiteDatabase> database_;
    std::filesystem::path backupURL_;
};

} // namespace quillbook
