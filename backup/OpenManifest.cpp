#include "backup/OpenManifest.h"

#include "backup/BackupError.h"
#include "backup/BackupPropertyList.h"
#include "backup/FileDecryption.h"
#include "backup/StoredFiles.h"
#include "core/records/DescribedError.h"
#include "platform/FileReader.h"
#include "platform/FileWriter.h"
#include "store/sqlite/TableForm.h"
#include "store/sqlite/WriteAheadLog.h"

#include <array>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using Reason = BackupError::Reason;

/// What "Manifest.plist" tells of the encryption.
struct ProtectedManifest {
    Data keybag;
    Data manifestKey; ///< Wrapped, behind the number of its protection class.
};

ProtectedManifest protectedManifest(const fs::path& backup) {
    const PropertyList list = readPropertyListFile(backup / "Manifest.plist");
    auto keybag = list.data("BackupKeyBag");
    auto manifestKey = list.data("ManifestKey");
    if (!keybag || !manifestKey) throw BackupError(Reason::manifestUnreadable);
    return {*std::move(keybag), *std::move(manifestKey)};
}

/// Not what a link leads to.
bool isRegularFile(const fs::path& file) {
    std::error_code failure;
    return fs::is_regular_file(fs::symlink_status(file, failure));
}

void decryptWhole(const fs::path& file, const fs::path& copy, std::span<const std::uint8_t> key,
                  const std::stop_token& stop) {
    std::error_code failure;
    const std::uintmax_t size = isRegularFile(file) ? fs::file_size(file, failure) : 0;
    if (failure || size == 0) throw BackupError(Reason::manifestUnreadable);
    try {
        FileReader input(file);
        FileWriter output(copy, FileAccess::ownerOnly);
        decryptStream(input, output, key, static_cast<std::int64_t>(size), stop);
        output.close();
    } catch (const DescribedError&) {
        throw BackupError(Reason::manifestUnreadable);
    }
}

} // namespace

UnlockedKeybag decryptManifest(const fs::path& backup, const std::optional<std::string>& password,
                               const fs::path& copy, const std::stop_token& stop) {
    const ProtectedManifest manifest = protectedManifest(backup);
    // Behind the two keys, so that a broken manifest reports itself first.
    if (!password) throw BackupError(Reason::wrongPassword);
    UnlockedKeybag keybag = unlock(*password, parseKeybag(manifest.keybag, stop), stop);
    const SecretBytes key = unwrapProtectedKey(manifest.manifestKey, &keybag, stop);
    decryptWhole(backup / "Manifest.db", copy, key, stop);
    return keybag;
}

std::shared_ptr<SQLiteDatabase> openManifest(const fs::path& database, const std::stop_token& stop) {
    constexpr int longestRow = 16 << 20U;
    const std::array<std::string, 1> tables = {"Files"};
    const std::array<std::string, 5> columns = {"fileid", "domain", "relativepath", "flags", "file"};
    auto manifest =
        std::make_shared<SQLiteDatabase>(database, SQLiteRestraint{.stop = stop, .longestValue = longestRow});
    if (!areOrdinaryTables(*manifest, tables, columns)) throw BackupError(Reason::manifestUnreadable);
    return manifest;
}

std::shared_ptr<SQLiteDatabase> openPlainManifest(const fs::path& backup, const fs::path& copy,
                                                  const std::stop_token& stop) {
    const fs::path manifest = backup / "Manifest.db";
    std::error_code failure;
    const auto status = fs::symlink_status(manifest, failure);
    // Through a link, SQLite would write beside a file that is no part of the backup.
    if (fs::exists(status) && !fs::is_regular_file(status)) throw BackupError(Reason::manifestUnreadable);
    if (!usesWriteAheadLog(manifest)) return openManifest(manifest, stop);
    copyPrivately(manifest, copy, stop);
    const fs::path log = manifest.native() + "-wal";
    if (isRegularFile(log)) copyPrivately(log, copy.native() + "-wal", stop);
    foldWriteAheadLog(copy, stop);
    return openManifest(copy, stop);
}

} // namespace quillbook
