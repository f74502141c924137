#pragma once

#include "backup/BackupManifest.h"
#include "backup/StoredFiles.h"
#include "backup/WorkingDirectory.h"
#include "platform/UserFolders.h"

#include <condition_variable>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>

namespace quillbook {

/// A device backup that is open: its Messages database lies as an ordinary file in a private working
/// directory, and each of its files can be asked for. `fileURL` and `releaseFile` are safe from any thread.
/// The backup itself is only read. Ends with `teardown`, else with the object.
class PreparedBackup {
public:
    /// Opens the backup in the given folder. Takes as long as the key derivation and the decryption of two
    /// databases; throws CancellationError soon after a request to stop, during the key derivation within
    /// 100 ms. Throws BackupError,
    /// ManifestError, BinaryPlistError, BackupCryptoError, PropertyListError, SQLiteError and FileError;
    /// nothing of the opening is left then.
    static std::shared_ptr<PreparedBackup>
    open(const std::filesystem::path& backup, bool isEncrypted, const std::optional<std::string>& password,
         const std::stop_token& stop = {},
         const std::filesystem::path& temporaryDirectory = temporaryFolder());
    ~PreparedBackup();
    PreparedBackup(const PreparedBackup&) = delete;
    PreparedBackup& operator=(const PreparedBackup&) = delete;

    /// The working copy, complete in one file: no log stands beside it.
    const std::filesystem::path& messageDatabaseURL() const { return messageDatabaseURL_; }
    const std::filesystem::path& backupURL() const { return backupURL_; }
    const std::filesystem::path& workingDirectory() const { return workingDirectory_->path(); }
    bool isEncrypted() const { return protection_.isEncrypted; }
    /// Stops with the teardown: for whoever reads the working copy.
    std::stop_token tornDown() const { return tornDown_.get_token(); }

    /// A readable file with the contents of a file of the device: decrypted, or the stored file itself in a
    /// plain backup. Nothing where the backup has no such file, and after the teardown. What was decrypted
    /// once is kept until it is released. Throws as `open`.
    std::optional<std::filesystem::path> fileURL(const std::string& domain, const std::string& relativePath);
    /// A file whose presence and emptiness are those of what `fileURL` would give, found without a
    /// decryption: the stored file. Throws as `open`.
    std::optional<std::filesystem::path> storedFile(const std::string& domain,
                                                    const std::string& relativePath);
    /// Deletes what `fileURL` decrypted. Any other file is left alone, those of the backup above all.
    void releaseFile(const std::filesystem::path& url);
    /// Removes everything that the opening made, after a decryption under way has broken off. Safe to call
    /// twice and from any thread.
    void teardown();

private:
    class Use;

    PreparedBackup(std::filesystem::path backup, bool isEncrypted,
                   const std::filesystem::path& temporaryDirectory);
    void prepare(const std::optional<std::string>& password);
    void fetchMessageDatabase();
    void fetchCompanion(const std::string& suffix);
    std::optional<std::filesystem::path> cachedFile(const std::string& fileID);
    std::filesystem::path decryptedFile(const ManifestEntry& entry, const std::filesystem::path& storedFile);
    std::filesystem::path keepDecrypted(const std::string& fileID, const std::filesystem::path& temporary);
    std::filesystem::path filesFolder() const { return workingDirectory_->path() / "files"; }

    const std::filesystem::path backupURL_;
    const std::unique_ptr<WorkingDirectory> workingDirectory_;
    const std::filesystem::path messageDatabaseURL_;
    BackupProtection protection_;
    std::optional<BackupManifest> manifest_; ///< Closed by the teardown.

    std::mutex lock_; ///< For what follows; never held during a decryption.
    std::map<std::string, std::filesystem::path> decryptedCache_; ///< By `fileID`.
    std::condition_variable noUse_;
    std::size_t useCount_ = 0;
    std::stop_source tornDown_; ///< Also requested by who cancels the opening.
    std::mutex teardown_;       ///< Held for a whole teardown, so that each returns when all is gone.
};

} // namespace quillbook
