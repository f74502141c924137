#pragma once

#include "core/records/ConversationSummary.h"
#include "core/text/Date.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace quillbook::sample {

/// How a backup's password becomes the key of its keybag.
enum class KeyDerivation {
    single,  ///< PBKDF2 with HMAC-SHA1 alone, as in older backups.
    twofold, ///< PBKDF2 with HMAC-SHA256 before it.
};

struct BackupEncryption {
    std::string password;
    std::int64_t rounds = 10'000; ///< Of the step that is meant to be slow: the only or the first one.
    KeyDerivation derivation = KeyDerivation::twofold;
    /// What the keybag says instead of `rounds`; its password then opens nothing.
    std::optional<std::int64_t> claimedRounds;
    /// Tags of the keybag's header, such as "DPSL", that are left out. Without a tag of the first step the
    /// keys are made without that step, so that the password still opens the backup.
    std::set<std::string> omittedTags;
};

/// How the index of a backup keeps its own journal.
enum class ManifestJournal {
    writeAheadLog, ///< As devices leave it: marked for a write-ahead log, and complete without one.
    rollback,
};

struct BackupDescription {
    std::filesystem::path folder; ///< Must not exist yet; its name is the backup's identifier.
    std::optional<BackupEncryption> encryption;
    std::string deviceName = "Robin’s iPhone";
    std::string productType = "iPhone14,5";
    std::string productVersion = "17.5.1";
    Date lastBackupDate;
    std::uint64_t seed = 1; ///< All keys and salts follow from it: the same calls give the same bytes.
    ManifestJournal manifestJournal = ManifestJournal::writeAheadLog;
};

/// Which of a row's parts are made to differ from what a sound backup has.
struct BackupFileOptions {
    /// Instead of the SHA-1 of "domain-relativePath". One with other characters than hexadecimal digits gets
    /// no stored file, so that nothing is ever written outside the backup.
    std::optional<std::string> fileID;
    bool hasStoredFile = true; ///< False: a row whose file the backup does not hold.
    /// Encrypted backups: without a key the file is stored as it is, as devices do with files of no bytes.
    bool hasKey = true;
    std::optional<std::int64_t> claimedSize;      ///< Instead of the real size.
    std::optional<Data> fileBlob;                 ///< Instead of the row's keyed archive.
    std::optional<std::uint32_t> protectionClass; ///< Instead of class 4.
};

/// Writes one device backup: "Manifest.db", "Manifest.plist", "Info.plist", "Status.plist" and the stored
/// files below folders of two characters (docs/formats/device-backup.md). Streams files block by block. Its
/// keybag opens the protection classes 1 to 4, 6, 7, 10 and 11 with the password; 5, 8 and 9 are bound to the
/// device. Throws SampleError and FileError.
class BackupWriter {
public:
    explicit BackupWriter(BackupDescription description);
    /// A backup that was not finished stays as it is: without a Manifest.plist, so no reader lists it.
    ~BackupWriter();
    BackupWriter(const BackupWriter&) = delete;
    BackupWriter& operator=(const BackupWriter&) = delete;

    /// Takes a copy of the file's contents. Returns where they are stored in the backup; an empty path where
    /// nothing is stored. The folders that lead to the file get rows of their own.
    std::filesystem::path addFile(std::string_view domain, std::string_view relativePath,
                                  const std::filesystem::path& contents,
                                  const BackupFileOptions& options = {});
    std::filesystem::path addBytes(std::string_view domain, std::string_view relativePath,
                                   std::string_view contents, const BackupFileOptions& options = {});
    /// Writes the index and the property lists. Call it once, last.
    void finish();

    /// A hidden folder beside the backup for what is still in the making; it goes with the writer.
    const std::filesystem::path& workingFolder() const;
    std::uint64_t seed() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// Adds a Messages library as a device's backup has it: the database as "Library/SMS/sms.db" of "HomeDomain",
/// some of its newest rows only in the "-wal" companion, the attachments below "Library/SMS/Attachments" of
/// "MediaDomain". `messagesFolder` holds "chat.db" and "Attachments" and is not changed. Throws SampleError
/// and FileError.
void addMessagesLibrary(BackupWriter& writer, const std::filesystem::path& messagesFolder);

} // namespace quillbook::sample
