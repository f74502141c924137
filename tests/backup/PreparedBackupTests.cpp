#include "backup/BackupError.h"
#include "core/records/Cancellation.h"
#include "platform/FileError.h"
#include "store/sqlite/SQLiteError.h"
#include "tests/backup/BackupFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/MessagesDatabase.h"

#include <algorithm>
#include <fstream>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using sample::BackupFileOptions;
using sample::BackupWriter;
using test::BackupFixture;
using test::BackupKind;
using test::EitherBackup;
using test::knownPlaintext;
using test::messageTexts;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* attachmentPath = "Library/SMS/Attachments/00/a.txt";
constexpr const char* manifestUnreadable = "The backup manifest could not be read.";

TEST_P(EitherBackup, opensWithTheRowsOfTheLogAndNoCompanions) {
    write(kind());
    const auto opened = open(kind());
    EXPECT_THAT(messageTexts(opened->messageDatabaseURL()), ElementsAre(knownPlaintext, "in the log"));
    EXPECT_FALSE(fs::exists(opened->messageDatabaseURL().native() + "-wal"));
    EXPECT_FALSE(fs::exists(opened->messageDatabaseURL().native() + "-shm"));
    EXPECT_EQ(opened->backupURL(), backup);
    EXPECT_EQ(opened->isEncrypted(), kind() == BackupKind::encrypted);
}

TEST_P(EitherBackup, leavesTheBackupAsItWas) {
    write(kind());
    const auto before = test::snapshotOf(backup);
    {
        const auto opened = open(kind());
        const auto file = opened->fileURL("MediaDomain", attachmentPath);
        ASSERT_TRUE(file);
        opened->releaseFile(*file);
    }
    EXPECT_EQ(test::snapshotOf(backup), before);
}

TEST_P(EitherBackup, leavesTheBackupAsItWasWhenTheOpeningFails) {
    write(kind(), [](BackupWriter& writer) { writer.addBytes("HomeDomain", "other", "bytes"); });
    const auto before = test::snapshotOf(backup);
    EXPECT_NE(failureOfOpening(kind(), test::backupPassword), "");
    EXPECT_EQ(test::snapshotOf(backup), before);
}

TEST_P(EitherBackup, opensThroughALinkToItsFolder) {
    write(kind());
    fs::rename(backup, folder / "elsewhere");
    fs::create_directory_symlink(folder / "elsewhere", backup);
    EXPECT_EQ(messageTexts(open(kind())->messageDatabaseURL()).size(), 2U);
}

TEST_P(EitherBackup, withoutMessagesSaysSo) {
    write(kind(), [](BackupWriter& writer) { writer.addBytes("HomeDomain", "other", "bytes"); });
    EXPECT_EQ(failureOfOpening(kind(), test::backupPassword),
              BackupError(BackupError::Reason::messageDatabaseMissing).description());
    EXPECT_THAT(leftovers(), IsEmpty());
}

TEST_P(EitherBackup, withoutTheStoredDatabaseReportsTheSystemsError) {
    write(kind());
    fs::remove(stored("sms.db"));
    EXPECT_THROW(open(kind()), FileError);
    EXPECT_THAT(leftovers(), IsEmpty());
}

TEST_P(EitherBackup, withALinkForItsDatabaseFindsNone) {
    write(kind());
    fs::rename(stored("sms.db"), folder / "outside");
    fs::create_symlink(folder / "outside", stored("sms.db"));
    const auto before = test::snapshotOf(folder.path());
    EXPECT_THROW(open(kind()), FileError);
    EXPECT_EQ(test::snapshotOf(folder.path()), before);
}

TEST_P(EitherBackup, withAMalformedFileIDStops) {
    write(kind(), [](BackupWriter& writer) {
        writer.addBytes("HomeDomain", "Library/SMS/sms.db", "bytes",
                        BackupFileOptions{.fileID = "../../../../../../etc/passwd", .hasStoredFile = false});
    });
    EXPECT_EQ(failureOfOpening(kind(), test::backupPassword),
              "This backup's file index is malformed, so Quillbook stopped rather than read from it.");
    EXPECT_THAT(leftovers(), IsEmpty());
}

struct CompanionCase {
    const char* name;
    std::string contents;
    BackupFileOptions options;
};

class BackupWithAnOddCompanion : public BackupFixture,
                                 public testing::WithParamInterface<std::tuple<BackupKind, CompanionCase>> {};

TEST_P(BackupWithAnOddCompanion, opensWithoutIt) {
    const auto& [kind, companion] = GetParam();
    write(kind, [&, &oddity = companion](BackupWriter& writer) {
        writer.addBytes("HomeDomain", "Library/SMS/sms.db-wal", oddity.contents, oddity.options);
        const test::TemporaryFolder messages;
        test::MessagesDatabase database(messages / "chat.db");
        database.addMessage(database.addChat("chat", "Lake house", "chat1"), {.guid = "m", .text = "one"});
        writer.addFile("HomeDomain", "Library/SMS/sms.db", messages / "chat.db");
    });
    const auto opened = open(kind);
    EXPECT_EQ(messageTexts(opened->messageDatabaseURL()).size(), 1U);
    EXPECT_FALSE(fs::exists(opened->messageDatabaseURL().native() + "-wal"));
    EXPECT_FALSE(fs::exists(opened->messageDatabaseURL().native() + "-shm"));
}

INSTANTIATE_TEST_SUITE_P(
    Table, BackupWithAnOddCompanion,
    testing::Combine(testing::Values(BackupKind::plain, BackupKind::encrypted),
                     testing::Values(CompanionCase{"noLogAtAll", std::string(5'000, 'x'), {}},
                                     CompanionCase{"empty", "", {}},
                                     CompanionCase{"absent", "x", {.hasStoredFile = false}},
                                     CompanionCase{"malformedFileID", "x", {.fileID = "zz"}},
                                     CompanionCase{"keyless", "x", {.hasKey = false}},
                                     CompanionCase{"claimsTooMuch", "x", {.claimedSize = 1'000'000}},
                                     CompanionCase{"negativeSize", "x", {.claimedSize = -1}},
                                     CompanionCase{"noRecord", "x", {.fileBlob = Data{1, 2, 3}}})),
    test::nameOfCase<BackupWithAnOddCompanion>);

TEST_P(EitherBackup, withALinkForItsLogNeverWritesThroughIt) {
    write(kind());
    const auto outside = folder.write("outside", std::string(4'096, 'x'));
    fs::remove(stored("sms.db-wal"));
    fs::create_symlink(outside, stored("sms.db-wal"));
    const auto before = test::snapshotOf(folder.path());
    EXPECT_THAT(messageTexts(open(kind())->messageDatabaseURL()), ElementsAre(knownPlaintext));
    EXPECT_EQ(test::snapshotOf(folder.path()), before);
}

TEST_P(EitherBackup, whoseMessagesAreNoDatabaseOpensAndFailsAtTheFirstQuestion) {
    write(kind(), [](BackupWriter& writer) {
        writer.addBytes("HomeDomain", "Library/SMS/sms.db", std::string(8'192, 'x'));
        writer.addBytes("HomeDomain", "Library/SMS/sms.db-wal", std::string(8'192, 'y'));
    });
    const auto opened = open(kind());
    EXPECT_THROW(messageTexts(opened->messageDatabaseURL()), SQLiteError);
    EXPECT_THAT(test::namesIn(opened->workingDirectory()), testing::Not(testing::Contains("sms.db-wal")));
}

TEST_P(EitherBackup, isTornDownOnceAndForAll) {
    write(kind());
    const auto opened = open(kind());
    EXPECT_TRUE(isActiveWorkingDirectory(opened->workingDirectory()));
    opened->teardown();
    opened->teardown();
    EXPECT_THAT(leftovers(), IsEmpty());
    EXPECT_FALSE(isActiveWorkingDirectory(opened->workingDirectory()));
    EXPECT_EQ(opened->fileURL("MediaDomain", attachmentPath), std::nullopt);
    EXPECT_THAT(leftovers(), IsEmpty());
}

TEST_P(EitherBackup, endsWithItsLastReference) {
    write(kind());
    open(kind()).reset();
    EXPECT_THAT(leftovers(), IsEmpty());
}

TEST_P(EitherBackup, isForItsOwnerAlone) {
    write(kind());
    for (const mode_t mask : {0000, 0022, 0777}) {
        EXPECT_EQ(test::runInChild([&] {
                      ::umask(mask);
                      const auto opened = open(kind());
                      opened->fileURL("MediaDomain", attachmentPath);
                      std::string odd;
                      const auto check = [&](const fs::path& file) {
                          const auto expected = fs::is_directory(file) ? fs::perms(0700) : fs::perms(0600);
                          if (test::permissionsOf(file) != expected) odd += file.filename().string() + " ";
                      };
                      check(opened->workingDirectory());
                      for (const auto& entry : fs::recursive_directory_iterator(opened->workingDirectory()))
                          check(entry.path());
                      return odd;
                  }),
                  "")
            << std::oct << mask;
    }
}

/// Permissions that are mended after the creation would leave a moment in which others can look in.
TEST_P(EitherBackup, isForItsOwnerAloneFromTheStart) {
    write(kind());
    EXPECT_EQ(test::runInChild([&] {
                  const bool canFail = test::failSystemCall(SYS_fchmod, 1, 0600, EPERM) &&
                                       test::failSystemCall(SYS_chmod, 1, 0700, EPERM);
                  if (!canFail) return std::string("no filter");
                  const auto opened = open(kind());
                  opened->fileURL("MediaDomain", attachmentPath);
                  std::string odd;
                  for (const auto& entry : fs::recursive_directory_iterator(temporary)) {
                      const auto others = fs::perms::group_all | fs::perms::others_all;
                      if ((test::permissionsOf(entry.path()) & others) != fs::perms::none)
                          odd += entry.path().filename().string() + " ";
                  }
                  return odd;
              }),
              "");
}

TEST_P(EitherBackup, withoutLocksStillOpens) {
    write(kind());
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  if (!test::failSystemCall(SYS_flock, 1, LOCK_EX | LOCK_NB, ENOLCK)) return "no filter";
                  return messageTexts(open(kind())->messageDatabaseURL()).size() == 2 ? "" : "not opened";
              }),
              "");
}

TEST_P(EitherBackup, withoutAMarkerStillOpens) {
    write(kind());
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  constexpr int flags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_CREAT;
                  if (!test::failSystemCall(SYS_openat, 2, flags, EMFILE)) return "no filter";
                  const auto opened = open(kind());
                  if (fs::exists(opened->workingDirectory() / ".in-use")) return "marked all the same";
                  return messageTexts(opened->messageDatabaseURL()).size() == 2 ? "" : "not opened";
              }),
              "");
}

TEST_P(EitherBackup, withoutARoomToWorkInReportsTheSystemsError) {
    write(kind());
    folder.write("file", "in the way");
    EXPECT_THROW(PreparedBackup::open(backup, kind() == BackupKind::encrypted, test::backupPassword, {},
                                      folder / "file"),
                 FileError);
}

TEST_P(EitherBackup, makesItsTemporaryFolder) {
    write(kind());
    const auto opened = PreparedBackup::open(backup, kind() == BackupKind::encrypted, test::backupPassword,
                                             {}, temporary / "new/er");
    EXPECT_EQ(opened->workingDirectory().parent_path(), temporary / "new/er");
}

TEST_P(EitherBackup, leavesNothingOnAFullDisk) {
    write(kind(), [this](BackupWriter& writer) {
        addMessages(writer);
        writer.addBytes("MediaDomain", "Library/SMS/Attachments/big", std::string(3'000'000, 'x'));
    });
    for (const std::size_t bytes : {4'096, 40'000, 120'000, 1'000'000}) {
        const auto outcome =
            test::runOnSmallDisk(temporary, {.disk = bytes, .file = bytes}, [&]() -> std::string {
                try {
                    const auto opened = open(kind());
                    const auto file = opened->fileURL("MediaDomain", "Library/SMS/Attachments/big");
                    if (kind() == BackupKind::encrypted) return file ? "room for all" : "no error";
                } catch (const DescribedError&) {
                    if (!leftovers().empty()) return "left something";
                }
                return leftovers().empty() ? "" : "left something in the end";
            });
        EXPECT_EQ(outcome, "") << bytes;
    }
}

/// Without its log the database would lack the newest messages, and nobody would be told.
TEST_P(EitherBackup, whoseLogFindsNoRoomIsNotOpenedWithoutIt) {
    write(kind());
    const auto log = fs::file_size(stored("sms.db-wal"));
    const auto room = fs::file_size(stored("sms.db")) + fs::file_size(backup / "Manifest.db") + 60'000;
    const auto outcome =
        test::runOnSmallDisk(temporary, {.disk = room, .file = log - 1}, [&]() -> std::string {
            // Fills what is beside the three files, so that the last of them does not fit.
            std::ofstream(temporary / "filling")
                << std::string(60'000 - std::min<std::size_t>(log / 2, 59'000), 'x');
            try {
                const auto opened = open(kind());
                return messageTexts(opened->messageDatabaseURL()).size() == 2 ? "" : "rows are gone";
            } catch (const DescribedError&) {
                return leftovers().size() == 1 ? "" : "left something";
            }
        });
    EXPECT_EQ(outcome, "");
}

TEST_P(EitherBackup, whoseLogCannotBeWrittenIsNotOpenedWithoutIt) {
    write(kind());
    const std::uint32_t padding = kind() == BackupKind::encrypted ? 16 : 0;
    const auto log = static_cast<std::uint32_t>(fs::file_size(stored("sms.db-wal"))) - padding;
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  if (!test::failSystemCall(SYS_write, 2, log, ENOSPC)) return "no filter";
                  try {
                      open(kind());
                      return "opened";
                  } catch (const FileError&) {
                      return leftovers().empty() ? "" : "left something";
                  }
              }),
              "");
}

TEST_P(EitherBackup, whoseMessagesAreAViewIsRefused) {
    write(kind(), [](BackupWriter& writer) {
        const test::TemporaryFolder messages;
        sqlite3* handle = nullptr;
        sqlite3_open((messages / "sms.db").c_str(), &handle);
        sqlite3_exec(handle,
                     "CREATE VIEW message AS WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n) "
                     "SELECT x AS text FROM n",
                     nullptr, nullptr, nullptr);
        sqlite3_close(handle);
        writer.addFile("HomeDomain", "Library/SMS/sms.db", messages / "sms.db");
    });
    EXPECT_EQ(failureOfOpening(kind(), test::backupPassword),
              "This backup is not supported: its Messages database has another form");
    EXPECT_THAT(leftovers(), IsEmpty());
}

TEST_P(EitherBackup, canBeCancelledBeforeItIsOpen) {
    write(kind());
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(open(kind(), stop.get_token()), CancellationError);
    EXPECT_THAT(leftovers(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Kinds, EitherBackup, testing::Values(BackupKind::plain, BackupKind::encrypted),
                         [](const auto& test) {
                             return std::string(test.param == BackupKind::plain ? "plain" : "encrypted");
                         });

class PlainBackup : public BackupFixture {};

TEST_F(PlainBackup, inRollbackModeIsOpenedInPlace) {
    auto older = description(BackupKind::plain);
    older.manifestJournal = sample::ManifestJournal::rollback;
    BackupWriter writer(older);
    addMessages(writer);
    writer.finish();
    const auto before = test::snapshotOf(backup);
    {
        const auto opened = open(BackupKind::plain);
        EXPECT_EQ(messageTexts(opened->messageDatabaseURL()).size(), 2U);
        EXPECT_THAT(test::namesIn(opened->workingDirectory()), ElementsAre(".in-use", "sms.db"));
    }
    EXPECT_EQ(test::snapshotOf(backup), before);
}

TEST_F(PlainBackup, inWriteAheadLogModeIsOpenedFromACopy) {
    write(BackupKind::plain);
    const auto opened = open(BackupKind::plain);
    EXPECT_THAT(test::namesIn(opened->workingDirectory()), ElementsAre(".in-use", "Manifest.db", "sms.db"));
    EXPECT_THAT(test::namesIn(backup), testing::Not(testing::Contains(testing::HasSubstr("-wal"))));
}

TEST_F(PlainBackup, withALogBesideItsManifestSeesTheRowsOfTheLog) {
    write(BackupKind::plain);
    // The last row of the index moves into a log, as if the backup had been cut off there.
    const fs::path live = folder / "live.db";
    fs::copy_file(backup / "Manifest.db", live);
    sqlite3* handle = nullptr;
    ASSERT_EQ(sqlite3_open(live.c_str(), &handle), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(handle,
                           "PRAGMA wal_autocheckpoint=0;"
                           "UPDATE Files SET relativePath = 'renamed' WHERE relativePath LIKE '%a.txt'",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    fs::copy_file(live, backup / "Manifest.db", fs::copy_options::overwrite_existing);
    fs::copy_file(live.native() + "-wal", backup / "Manifest.db-wal");
    sqlite3_close(handle);
    const auto before = test::snapshotOf(backup);
    const auto opened = open(BackupKind::plain);
    EXPECT_EQ(opened->fileURL("MediaDomain", "renamed"), stored("a.txt"));
    EXPECT_EQ(test::snapshotOf(backup), before);
}

TEST_F(PlainBackup, withoutAReadableManifestReportsSQLitesError) {
    write(BackupKind::plain);
    fs::remove(backup / "Manifest.db");
    EXPECT_THROW(open(BackupKind::plain), SQLiteError);
    std::ofstream(backup / "Manifest.db") << std::string(8'192, 'x');
    EXPECT_THROW(open(BackupKind::plain), SQLiteError);
    EXPECT_THAT(leftovers(), IsEmpty());
}

TEST_F(PlainBackup, withALinkForItsManifestReadsNothingThroughIt) {
    write(BackupKind::plain);
    fs::rename(backup / "Manifest.db", folder / "outside.db");
    fs::create_symlink(folder / "outside.db", backup / "Manifest.db");
    const auto before = test::snapshotOf(folder.path());
    EXPECT_EQ(failureOfOpening(BackupKind::plain, std::nullopt), manifestUnreadable);
    EXPECT_EQ(test::snapshotOf(folder.path()), before);
}

TEST_F(PlainBackup, whoseIndexIsAViewIsRefused) {
    write(BackupKind::plain);
    sqlite3* handle = nullptr;
    ASSERT_EQ(sqlite3_open((backup / "Manifest.db").c_str(), &handle), SQLITE_OK);
    ASSERT_EQ(
        sqlite3_exec(handle,
                     "PRAGMA journal_mode=DELETE; ALTER TABLE Files RENAME TO Kept;"
                     "CREATE VIEW Files AS WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n) "
                     "SELECT x AS fileID, 'a' AS domain, 'b' AS relativePath, 0 AS flags, 0 AS file FROM n",
                     nullptr, nullptr, nullptr),
        SQLITE_OK);
    sqlite3_close(handle);
    EXPECT_EQ(failureOfOpening(BackupKind::plain, std::nullopt), manifestUnreadable);
    EXPECT_THAT(leftovers(), IsEmpty());
}

} // namespace
} // namespace quillbook
