#include "backup/PreparedBackup.h"

#include "backup/BackupError.h"
#include "backup/FileRecord.h"
#include "backup/MessageTables.h"
#include "backup/OpenManifest.h"
#include "core/records/Cancellation.h"
#include "platform/FileError.h"
#include "platform/FolderCreation.h"
#include "platform/UUID.h"
#include "store/sqlite/WriteAheadLog.h"

#include <cstdio>
#include <utility>

namespace quillbook {
namespace {

namespace fs = std::filesystem;

constexpr const char* messagesDomain = "HomeDomain";
constexpr const char* messagesPath = "Library/SMS/sms.db";

void removeFile(const fs::path& file) {
    std::error_code ignored;
    fs::remove(file, ignored);
}

/// Two threads may ask for their first file at once.
void makeFilesFolder(const fs::path& folder) {
    std::error_code failure;
    if (fs::is_directory(folder, failure)) return;
    try {
        createPrivateFolder(folder);
    } catch (const FileError& error) {
        if (error.code != std::errc::file_exists) throw;
    }
}

void moveFile(const fs::path& file, const fs::path& newPlace) {
    if (std::rename(file.c_str(), newPlace.c_str()) != 0)
        throw FileError::fromErrno(FileError::Action::rename, newPlace);
}

/// As far as can be told without reading the file. A file of no bytes has none to decrypt, though it is
/// stored as a block.
bool canBeDecrypted(const ManifestEntry& entry, const fs::path& storedFile, const UnlockedKeybag& keybag) {
    const FileRecord record = fileRecord(entry.fileBlob);
    if (record.size <= 0 || !record.encryptionKey) return false;
    std::error_code unknown;
    const auto stored = fs::file_size(storedFile, unknown);
    if (unknown || stored < static_cast<std::uint64_t>(record.size)) return false;
    const SecretBytes key = unwrapProtectedKey(*record.encryptionKey, &keybag);
    return key.size() == 16 || key.size() == 24 || key.size() == 32; // As AES has them.
}

} // namespace

/// One call that needs the working directory. The teardown waits for all of them.
class PreparedBackup::Use {
public:
    explicit Use(PreparedBackup& backup) : backup_(backup) {
        const std::lock_guard guard(backup_.lock_);
        if (backup_.tornDown_.stop_requested()) return;
        ++backup_.useCount_;
        isGranted_ = true;
    }
    ~Use() {
        const std::lock_guard guard(backup_.lock_);
        if (isGranted_ && --backup_.useCount_ == 0) backup_.noUse_.notify_all();
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

    bool isGranted() const { return isGranted_; }

private:
    PreparedBackup& backup_;
    bool isGranted_ = false;
};

std::shared_ptr<PreparedBackup> PreparedBackup::open(const fs::path& backup, bool isEncrypted,
                                                     const std::optional<std::string>& password,
                                                     const std::stop_token& stop,
                                                     const fs::path& temporaryDirectory) {
    // A failure ends the object, and with it all that the opening made.
    const std::shared_ptr<PreparedBackup> prepared(
        new PreparedBackup(backup, isEncrypted, temporaryDirectory));
    const std::stop_callback cancelling(stop, [&] { prepared->tornDown_.request_stop(); });
    prepared->prepare(password);
    return prepared;
}

PreparedBackup::PreparedBackup(fs::path backup, bool isEncrypted, const fs::path& temporaryDirectory)
    : backupURL_(std::move(backup)),
      workingDirectory_(std::make_unique<WorkingDirectory>(temporaryDirectory)),
      messageDatabaseURL_(workingDirectory_->path() / "sms.db"), protection_{.isEncrypted = isEncrypted} {}

PreparedBackup::~PreparedBackup() {
    teardown();
}

void PreparedBackup::prepare(const std::optional<std::string>& password) {
    const std::stop_token stop = tornDown();
    const fs::path copy = workingDirectory() / "Manifest.db";
    if (isEncrypted()) {
        protection_.keybag = decryptManifest(backupURL_, password, copy, stop);
        manifest_.emplace(openManifest(copy, stop), backupURL_);
    } else {
        manifest_.emplace(openPlainManifest(backupURL_, copy, stop), backupURL_);
    }
    fetchMessageDatabase();
    requireOrdinaryMessageTables(messageDatabaseURL_, stop);
    throwIfCancelled(stop);
}

void PreparedBackup::fetchMessageDatabase() {
    const auto entry = manifest_->entry(messagesDomain, messagesPath);
    if (!entry) throw BackupError(BackupError::Reason::messageDatabaseMissing);
    const fs::path stored = manifest_->storedFile(*entry);
    requireStoredFile(stored);
    fetchFile(*entry, stored, messageDatabaseURL_, protection_, tornDown());
    for (const char* suffix : {"-wal", "-shm"})
        fetchCompanion(suffix);
    foldWriteAheadLog(messageDatabaseURL_, tornDown());
}

/// A database without its companions is still usable, so one that cannot be had counts for nothing. One that
/// finds no room here is another matter: the newest messages would be missing without a word.
void PreparedBackup::fetchCompanion(const std::string& suffix) {
    const fs::path destination = messageDatabaseURL_.native() + suffix;
    try {
        const auto entry = manifest_->entry(messagesDomain, messagesPath + suffix);
        if (!entry) return;
        const fs::path stored = manifest_->storedFile(*entry);
        if (isStoredFile(stored)) fetchFile(*entry, stored, destination, protection_, tornDown());
    } catch (const FileError& error) {
        const bool isOurDisk =
            error.action == FileError::Action::create || error.action == FileError::Action::write;
        if (isOurDisk && suffix == "-wal") throw;
        removeFile(destination);
    } catch (const DescribedError&) {
        removeFile(destination);
    }
}

std::optional<fs::path> PreparedBackup::storedFile(const std::string& domain,
                                                   const std::string& relativePath) {
    const Use use(*this);
    if (!use.isGranted()) return std::nullopt;
    const auto entry = manifest_->entry(domain, relativePath);
    if (!entry) return std::nullopt;
    fs::path stored = manifest_->storedFile(*entry);
    if (!isStoredFile(stored)) return std::nullopt;
    if (isEncrypted() && !canBeDecrypted(*entry, stored, protection_.keybag)) return std::nullopt;
    return stored;
}

std::optional<fs::path> PreparedBackup::fileURL(const std::string& domain, const std::string& relativePath) {
    const Use use(*this);
    if (!use.isGranted()) return std::nullopt;
    const auto entry = manifest_->entry(domain, relativePath);
    if (!entry) return std::nullopt;
    const fs::path stored = manifest_->storedFile(*entry);
    // The index may list what the backup does not hold.
    if (!isStoredFile(stored)) return std::nullopt;
    if (!isEncrypted()) return stored;
    if (auto cached = cachedFile(entry->fileID)) return cached;
    return decryptedFile(*entry, stored);
}

std::optional<fs::path> PreparedBackup::cachedFile(const std::string& fileID) {
    const std::lock_guard guard(lock_);
    const auto found = decryptedCache_.find(fileID);
    if (found == decryptedCache_.end()) return std::nullopt;
    std::error_code failure;
    if (fs::exists(found->second, failure)) return found->second;
    // Systems tidy their temporary folders now and then.
    decryptedCache_.erase(found);
    return std::nullopt;
}

fs::path PreparedBackup::decryptedFile(const ManifestEntry& entry, const fs::path& storedFile) {
    makeFilesFolder(filesFolder());
    const fs::path temporary = filesFolder() / (entry.fileID + "-" + uuidText());
    try {
        fetchFile(entry, storedFile, temporary, protection_, tornDown());
        return keepDecrypted(entry.fileID, temporary);
    } catch (const std::exception&) {
        removeFile(temporary);
        throw;
    }
}

/// Two threads may have decrypted the same file; the first one's stays.
fs::path PreparedBackup::keepDecrypted(const std::string& fileID, const fs::path& temporary) {
    const std::lock_guard guard(lock_);
    if (const auto found = decryptedCache_.find(fileID); found != decryptedCache_.end()) {
        removeFile(temporary);
        return found->second;
    }
    const fs::path file = filesFolder() / fileID;
    moveFile(temporary, file);
    decryptedCache_[fileID] = file;
    return file;
}

void PreparedBackup::releaseFile(const fs::path& url) {
    const Use use(*this);
    if (!use.isGranted()) return; // It goes, or went, with all the others.
    const fs::path file = url.lexically_normal();
    const std::string folder = filesFolder().native() + '/';
    if (!file.native().starts_with(folder)) return;
    const std::lock_guard guard(lock_);
    removeFile(file);
    std::erase_if(decryptedCache_, [&](const auto& each) { return each.second == file; });
}

void PreparedBackup::teardown() {
    tornDown_.request_stop();
    const std::lock_guard whole(teardown_);
    std::unique_lock guard(lock_);
    noUse_.wait(guard, [this] { return useCount_ == 0; });
    decryptedCache_.clear();
    manifest_.reset();
    guard.unlock();
    workingDirectory_->remove();
}

} // namespace quillbook
