#include "backup/FileDecryption.h"
#include "core/records/Cancellation.h"
#include "platform/FileError.h"
#include "propertylist/PropertyListError.h"
#include "store/sqlite/SQLiteError.h"
#include "tests/backup/BackupFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/NameRecorder.h"

#include <fstream>
#include <thread>

#include <sys/stat.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using sample::BackupFileOptions;
using sample::BackupWriter;
using test::BackupFixture;
using test::BackupKind;
using test::knownPlaintext;
using test::messageTexts;
using test::readFile;
using testing::IsEmpty;

constexpr const char* attachmentPath = "Library/SMS/Attachments/00/a.txt";
constexpr const char* wrongPassword = "The backup password is incorrect.";
constexpr const char* manifestUnreadable = "The backup manifest could not be read.";
constexpr const char* unknownError = "An unexpected error occurred.";

class EncryptedBackup : public BackupFixture {
protected:
    std::string failure(const std::optional<std::string>& password = test::backupPassword) const {
        return failureOfOpening(BackupKind::encrypted, password);
    }
    std::shared_ptr<PreparedBackup> open(const std::stop_token& stop = {}) const {
        return BackupFixture::open(BackupKind::encrypted, stop);
    }
};

TEST_F(EncryptedBackup, withAWrongPasswordLeavesNothingBehind) {
    write(BackupKind::encrypted);
    EXPECT_EQ(failure("lake hause"), wrongPassword);
    EXPECT_EQ(failure(""), wrongPassword);
    EXPECT_EQ(failure(std::nullopt), wrongPassword);
    EXPECT_THAT(leftovers(), IsEmpty());
    EXPECT_THAT(test::placesOf(knownPlaintext, folder.path()), IsEmpty());
}

TEST_F(EncryptedBackup, holdsNoPlaintextOutsideItsWorkingDirectory) {
    write(BackupKind::encrypted);
    const auto opened = open();
    opened->fileURL("MediaDomain", attachmentPath);
    const auto places = test::placesOf(knownPlaintext, folder.path());
    EXPECT_EQ(places.size(), 2U);
    for (const std::string& place : places)
        EXPECT_TRUE(place.starts_with(opened->workingDirectory().string() + "/")) << place;
}

/// Not even a file that is gone at once: its bytes would stay on the disk.
TEST_F(EncryptedBackup, makesNoFileInTheSystemsTemporaryFolder) {
    write(BackupKind::encrypted);
    const test::TemporaryFolder systems;
    EXPECT_EQ(test::runInChild([&] {
                  for (const char* variable : {"TMPDIR", "SQLITE_TMPDIR"})
                      ::setenv(variable, systems.path().c_str(), 1);
                  const test::NameRecorder recorder(systems.path());
                  systems.write("noticed", "");
                  const auto opened = open();
                  opened->fileURL("MediaDomain", attachmentPath);
                  opened->teardown();
                  std::string made;
                  for (const std::string& name : recorder.names())
                      made += name + " ";
                  return made;
              }),
              "noticed ");
}

TEST_F(EncryptedBackup, opensAfterTheSingleDerivationOfOlderBackups) {
    auto older = description(BackupKind::encrypted);
    older.encryption->derivation = sample::KeyDerivation::single;
    BackupWriter writer(older);
    addMessages(writer);
    writer.finish();
    EXPECT_EQ(messageTexts(open()->messageDatabaseURL()).size(), 2U);
}

TEST_F(EncryptedBackup, thatAsksForAbsurdRoundsCanBeCancelled) {
    auto slow = description(BackupKind::encrypted);
    slow.encryption->claimedRounds = INT64_MAX;
    BackupWriter(slow).finish();
    std::stop_source stop;
    std::jthread canceller([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        stop.request_stop();
    });
    EXPECT_THROW(open(stop.get_token()), CancellationError);
    EXPECT_THAT(leftovers(), IsEmpty());
}

TEST_F(EncryptedBackup, withoutRoundsIsMalformed) {
    auto odd = description(BackupKind::encrypted);
    odd.encryption->derivation = sample::KeyDerivation::single;
    odd.encryption->claimedRounds = 0;
    BackupWriter(odd).finish();
    EXPECT_EQ(failure(), "The backup’s encryption keybag is malformed.");
    EXPECT_THAT(leftovers(), IsEmpty());
}

struct ManifestListCase {
    const char* name;
    const char* entries; ///< Of the top dictionary of "Manifest.plist".
    const char* failure;
};

class ManifestPropertyList : public EncryptedBackup, public testing::WithParamInterface<ManifestListCase> {};

TEST_P(ManifestPropertyList, isCheckedBeforeThePassword) {
    write(BackupKind::encrypted);
    std::ofstream(backup / "Manifest.plist", std::ios::trunc)
        << "<plist version=\"1.0\">" << GetParam().entries << "</plist>";
    EXPECT_EQ(failure(std::nullopt), GetParam().failure);
    EXPECT_THAT(leftovers(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Table, ManifestPropertyList,
    testing::Values(
        ManifestListCase{"noDictionary", "<array/>", manifestUnreadable},
        ManifestListCase{"noKeys", "<dict><key>IsEncrypted</key><true/></dict>", manifestUnreadable},
        ManifestListCase{"noManifestKey", "<dict><key>BackupKeyBag</key><data>AAAA</data></dict>",
                         manifestUnreadable},
        ManifestListCase{"noKeybag", "<dict><key>ManifestKey</key><data>AAAA</data></dict>",
                         manifestUnreadable},
        ManifestListCase{
            "keybagOfAnotherType",
            "<dict><key>BackupKeyBag</key><string>a</string><key>ManifestKey</key><data>AAAA</data></dict>",
            manifestUnreadable},
        ManifestListCase{
            "manifestKeyOfAnotherType",
            "<dict><key>BackupKeyBag</key><data>AAAA</data><key>ManifestKey</key><integer>1</integer></dict>",
            manifestUnreadable},
        ManifestListCase{
            "bothThere",
            "<dict><key>BackupKeyBag</key><data>AAAA</data><key>ManifestKey</key><data>AAAA</data></dict>",
            wrongPassword}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(EncryptedBackup, withAMalformedKeybagSaysSo) {
    write(BackupKind::encrypted);
    std::ofstream(backup / "Manifest.plist", std::ios::trunc)
        << "<plist version=\"1.0\"><dict><key>BackupKeyBag</key><data>AAAA</data>"
           "<key>ManifestKey</key><data>AAAA</data></dict></plist>";
    EXPECT_EQ(failure(), "The backup’s encryption keybag is malformed.");
    EXPECT_THAT(leftovers(), IsEmpty());
}

TEST_F(EncryptedBackup, withoutItsPropertyListReportsTheSystemsError) {
    write(BackupKind::encrypted);
    fs::remove(backup / "Manifest.plist");
    EXPECT_THROW(open(), FileError);
    EXPECT_THAT(leftovers(), IsEmpty());
}

TEST_F(EncryptedBackup, withAnUnparsablePropertyListReportsIt) {
    write(BackupKind::encrypted);
    std::ofstream(backup / "Manifest.plist", std::ios::trunc) << "no property list";
    EXPECT_THROW(open(), PropertyListError);
    EXPECT_THAT(leftovers(), IsEmpty());
}

struct ManifestChange {
    const char* name;
    std::function<void(const fs::path& manifest)> apply;
};

class UnreadableManifest : public EncryptedBackup, public testing::WithParamInterface<ManifestChange> {};

TEST_P(UnreadableManifest, saysSo) {
    write(BackupKind::encrypted);
    GetParam().apply(backup / "Manifest.db");
    EXPECT_EQ(failure(), manifestUnreadable);
    EXPECT_THAT(leftovers(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Table, UnreadableManifest,
    testing::Values(ManifestChange{"missing", [](const fs::path& file) { fs::remove(file); }},
                    ManifestChange{"empty", [](const fs::path& file) { fs::resize_file(file, 0); }},
                    ManifestChange{"cutWithinABlock",
                                   [](const fs::path& file) { fs::resize_file(file, 4'095); }},
                    ManifestChange{"folder",
                                   [](const fs::path& file) {
                                       fs::remove(file);
                                       fs::create_directory(file);
                                   }},
                    ManifestChange{"link",
                                   [](const fs::path& file) {
                                       fs::rename(file, file.parent_path().parent_path() / "outside");
                                       fs::create_symlink(file.parent_path().parent_path() / "outside", file);
                                   }},
                    ManifestChange{"pipe",
                                   [](const fs::path& file) {
                                       fs::remove(file);
                                       ::mkfifo(file.c_str(), 0600);
                                   }}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(EncryptedBackup, whoseManifestDecryptsToNoDatabaseReportsSQLitesError) {
    write(BackupKind::encrypted);
    std::string bytes = readFile(backup / "Manifest.db");
    bytes[3] = static_cast<char>(bytes[3] + 1);
    std::ofstream(backup / "Manifest.db", std::ios::binary | std::ios::trunc) << bytes;
    EXPECT_THROW(open(), SQLiteError);
    EXPECT_THAT(leftovers(), IsEmpty());
}

TEST_F(EncryptedBackup, cutAnywhereNeverOpensAndLeavesNothing) {
    write(BackupKind::encrypted);
    const std::string whole = readFile(stored("sms.db"));
    // Every cut within the first two blocks, and then one in each residue of a block, all over the file.
    for (std::size_t length = 0; length < whole.size(); length += length < 33 ? 1 : 1'009) {
        fs::resize_file(stored("sms.db"), length);
        EXPECT_THROW(open(), BackupCryptoError) << length;
        EXPECT_THAT(leftovers(), IsEmpty());
        std::ofstream(stored("sms.db"), std::ios::binary | std::ios::trunc) << whole;
    }
    EXPECT_EQ(messageTexts(open()->messageDatabaseURL()).size(), 2U);
}

TEST_F(EncryptedBackup, whoseManifestIsCutAnywhereFailsInWordsAndLeavesNothing) {
    write(BackupKind::encrypted);
    const std::string whole = readFile(backup / "Manifest.db");
    for (std::size_t length = 1; length < whole.size(); length += length < 33 ? 1 : 2'003) {
        fs::resize_file(backup / "Manifest.db", length);
        EXPECT_NE(failure(), "") << length;
        EXPECT_THAT(leftovers(), IsEmpty());
        std::ofstream(backup / "Manifest.db", std::ios::binary | std::ios::trunc) << whole;
    }
}

struct RecordCase {
    const char* name;
    BackupFileOptions options;
    const char* failure;
};

class OddMessagesRecord : public EncryptedBackup, public testing::WithParamInterface<RecordCase> {};

TEST_P(OddMessagesRecord, endsTheOpening) {
    write(BackupKind::encrypted, [](BackupWriter& writer) {
        writer.addBytes("HomeDomain", "Library/SMS/sms.db", "some thirty bytes of no database",
                        GetParam().options);
    });
    EXPECT_EQ(failure(), GetParam().failure);
    EXPECT_THAT(leftovers(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Table, OddMessagesRecord,
    testing::Values(RecordCase{"keylessOfSomeSize", {.hasKey = false}, manifestUnreadable},
                    RecordCase{
                        "keylessOfNegativeSize", {.hasKey = false, .claimedSize = -1}, manifestUnreadable},
                    RecordCase{"ofNegativeSize", {.claimedSize = -1}, unknownError},
                    RecordCase{"ofMoreThanIsStored", {.claimedSize = 49}, unknownError},
                    RecordCase{"ofAbsurdSize", {.claimedSize = INT64_MAX}, unknownError},
                    RecordCase{"withoutARecord", {.fileBlob = Data()}, unknownError},
                    RecordCase{"ofAnUnknownClass",
                               {.protectionClass = 99},
                               "This backup is not supported: protection class 99"}),
    [](const auto& test) { return std::string(test.param.name); });
} // namespace
} // namespace quillbook
