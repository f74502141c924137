#pragma once

#include "backup/BackupManifest.h"
#include "backup/Keybag.h"

#include <filesystem>
#include <stop_token>

namespace quillbook {

/// Whether a stored file can be read: a regular file in a real folder. A symbolic link, in its own place or
/// in that of its folder, could lead out of the backup and counts as nothing.
bool isStoredFile(const std::filesystem::path& file);

/// Throws FileError as for a missing file where `isStoredFile` says no.
void requireStoredFile(const std::filesystem::path& file);

/// Copies a file as it is to a new one for the owner alone, over what stands there. Throws FileError, and
/// CancellationError within one block of a request to stop.
void copyPrivately(const std::filesystem::path& file, const std::filesystem::path& destination,
                   const std::stop_token& stop);

/// How the files of a backup are stored.
struct BackupProtection {
    bool isEncrypted = false;
    UnlockedKeybag keybag; ///< Empty for a plain backup.
};

/// Gives the plaintext of an entry's stored file, one that `isStoredFile`, at the destination, over what
/// stands there. What a failure leaves behind is the caller's to remove. Throws FileError, BackupError,
/// BackupCryptoError, BinaryPlistError and CancellationError.
void fetchFile(const ManifestEntry& entry, const std::filesystem::path& storedFile,
               const std::filesystem::path& destination, const BackupProtection& protection,
               const std::stop_token& stop);

} // namespace quillbook
