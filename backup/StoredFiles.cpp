#include "backup/StoredFiles.h"

#include "backup/BackupError.h"
#include "backup/FileDecryption.h"
#include "backup/FileRecord.h"
#include "core/records/Cancellation.h"
#include "platform/FileError.h"

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using Action = FileError::Action;

/// A new file for the owner alone, over what stands there.
FileWriter newFile(const fs::path& destination) {
    try {
        return FileWriter(destination, FileAccess::ownerOnly);
    } catch (const FileError& error) {
        if (error.code != std::errc::file_exists) throw;
    }
    std::error_code failure;
    fs::remove_all(destination, failure);
    if (failure) throw FileError(Action::remove, destination, failure);
    return FileWriter(destination, FileAccess::ownerOnly);
}

void decrypt(const fs::path& storedFile, const fs::path& destination, std::span<const std::uint8_t> key,
             std::int64_t size, const std::stop_token& stop) {
    FileReader input(storedFile);
    FileWriter output = newFile(destination);
    decryptStream(input, output, key, size, stop);
    output.close();
}

} // namespace

bool isStoredFile(const fs::path& file) {
    std::error_code failure;
    return fs::is_directory(fs::symlink_status(file.parent_path(), failure)) &&
           fs::is_regular_file(fs::symlink_status(file, failure));
}

void requireStoredFile(const fs::path& file) {
    if (isStoredFile(file)) return;
    throw FileError(Action::open, file, std::make_error_code(std::errc::no_such_file_or_directory));
}

void copyPrivately(const fs::path& file, const fs::path& destination, const std::stop_token& stop) {
    FileReader input(file);
    FileWriter output = newFile(destination);
    for (auto block = input.next(); !block.empty(); block = input.next()) {
        throwIfCancelled(stop);
        output.write(block);
    }
    output.close();
}

void fetchFile(const ManifestEntry& entry, const fs::path& storedFile, const fs::path& destination,
               const BackupProtection& protection, const std::stop_token& stop) {
    if (!protection.isEncrypted) return copyPrivately(storedFile, destination, stop);
    const FileRecord record = fileRecord(entry.fileBlob);
    if (record.encryptionKey) {
        const SecretBytes key = unwrapProtectedKey(*record.encryptionKey, &protection.keybag, stop);
        return decrypt(storedFile, destination, key, record.size, stop);
    }
    // Only an empty file has no key; it is stored as it is.
    if (record.size != 0) throw BackupError(BackupError::Reason::manifestUnreadable);
    copyPrivately(storedFile, destination, stop);
}

} // namespace quillbook
