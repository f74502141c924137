#pragma once

#include "backup/Keybag.h"
#include "store/sqlite/SQLiteDatabase.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

namespace quillbook {

/// Unlocks an encrypted backup with its password and writes its decrypted index to `copy`. Throws
/// BackupError, FileError and PropertyListError for a "Manifest.plist" that cannot be read, and
/// CancellationError.
UnlockedKeybag decryptManifest(const std::filesystem::path& backup,
                               const std::optional<std::string>& password, const std::filesystem::path& copy,
                               const std::stop_token& stop);

/// Opens a readable index. Throws BackupError for one whose table of files is no ordinary table, SQLiteError
/// and CancellationError.
std::shared_ptr<SQLiteDatabase> openManifest(const std::filesystem::path& database,
                                             const std::stop_token& stop);

/// Opens the index of a plain backup where it lies, or at `copy` where reading it would write beside it.
/// Throws BackupError, SQLiteError, FileError and CancellationError.
std::shared_ptr<SQLiteDatabase> openPlainManifest(const std::filesystem::path& backup,
                                                  const std::filesystem::path& copy,
                                                  const std::stop_token& stop);

} // namespace quillbook
