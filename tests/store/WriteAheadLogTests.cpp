#include "core/records/Cancellation.h"
#include "store/sqlite/SQLiteDatabase.h"
#include "store/sqlite/WriteAheadLog.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TemporaryFolder.h"

#include <memory>
#include <optional>

#include <gmock/gmock.h>
#include <sqlite3.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::TemporaryFolder;

void run(sqlite3* handle, const char* sql) {
    ASSERT_EQ(sqlite3_exec(handle, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(handle);
}

/// A copy of a database of `rows` rows, the last of which stands only in its log.
fs::path databaseWithLog(const TemporaryFolder& folder, int rows = 1) {
    sqlite3* handle = nullptr;
    sqlite3_open((folder / "live").c_str(), &handle);
    run(handle, "PRAGMA journal_mode=WAL");
    run(handle, "CREATE TABLE t (x); INSERT INTO t VALUES ('first'); PRAGMA wal_checkpoint(TRUNCATE)");
    run(handle, "PRAGMA wal_autocheckpoint=0");
    for (int row = 0; row < rows; ++row)
        run(handle, "INSERT INTO t VALUES (hex(randomblob(2000)))");
    for (const char* suffix : {"", "-wal", "-shm"})
        fs::copy_file((folder / "live").native() + suffix, (folder / "copy").native() + suffix);
    sqlite3_close(handle);
    return folder / "copy";
}

std::size_t rowCount(const fs::path& database) {
    return SQLiteDatabase(database).query("SELECT x FROM t").size();
}

bool hasCompanions(const fs::path& database) {
    return fs::exists(database.native() + "-wal") || fs::exists(database.native() + "-shm");
}

TEST(WriteAheadLog, IsFoldedIn) {
    const TemporaryFolder folder;
    const auto database = databaseWithLog(folder);
    foldWriteAheadLog(database);
    EXPECT_FALSE(hasCompanions(database));
    EXPECT_EQ(rowCount(database), 2U);
    EXPECT_FALSE(hasCompanions(database));
}

TEST(WriteAheadLog, IsFoldedInWithoutItsIndex) {
    const TemporaryFolder folder;
    const auto database = databaseWithLog(folder);
    fs::remove(database.native() + "-shm");
    foldWriteAheadLog(database);
    EXPECT_EQ(rowCount(database), 2U);
}

TEST(WriteAheadLog, IsFoldedInWithASpoiltIndex) {
    const TemporaryFolder folder;
    const auto database = databaseWithLog(folder);
    folder.write("copy-shm", std::string(40'000, '\x55'));
    foldWriteAheadLog(database);
    EXPECT_EQ(rowCount(database), 2U);
    EXPECT_FALSE(hasCompanions(database));
}

TEST(WriteAheadLog, ThatBelongsToNoDatabaseIsRemoved) {
    const TemporaryFolder folder;
    const auto database = folder.write("copy", "no database");
    folder.write("copy-wal", "no log");
    folder.write("copy-shm", "no index");
    foldWriteAheadLog(database);
    EXPECT_FALSE(hasCompanions(database));
    EXPECT_EQ(readFile(database), "no database");
}

TEST(WriteAheadLog, BesideADatabaseThatHasNoneIsRemoved) {
    const TemporaryFolder folder;
    sqlite3* handle = nullptr;
    sqlite3_open((folder / "copy").c_str(), &handle);
    run(handle, "CREATE TABLE t (x); INSERT INTO t VALUES (1)");
    sqlite3_close(handle);
    folder.write("copy-wal", "no log");
    foldWriteAheadLog(folder / "copy");
    EXPECT_FALSE(hasCompanions(folder / "copy"));
    EXPECT_EQ(rowCount(folder / "copy"), 1U);
}

/// Its rows are still there for a reader, and removed with it they would be lost without a word.
TEST(WriteAheadLog, ThatFindsNoRoomStays) {
    const TemporaryFolder folder;
    const auto database = databaseWithLog(folder, 100);
    fs::create_directory(folder / "disk");
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  const auto room = fs::file_size(database) + fs::file_size(database.native() + "-wal");
                  std::optional<test::SmallDisk> disk;
                  if (test::enterPrivateMounts()) disk.emplace(folder / "disk", room + 80'000);
                  const fs::path copy = folder / "disk/copy";
                  fs::copy_file(database, copy);
                  fs::copy_file(database.native() + "-wal", copy.native() + "-wal");
                  // Where no disk can be mounted the database cannot grow.
                  std::optional<test::FileSizeLimit> limit;
                  if (!disk || !disk->isMounted()) limit.emplace(fs::file_size(copy));
                  foldWriteAheadLog(copy);
                  limit.reset();
                  if (!fs::exists(copy.native() + "-wal")) return "the log is gone";
                  return rowCount(copy) == 101 ? "" : "rows are gone";
              }),
              "");
}

TEST(WriteAheadLog, ThatAnotherConnectionReadsStays) {
    const TemporaryFolder folder;
    const auto database = databaseWithLog(folder);
    sqlite3* reader = nullptr;
    sqlite3_open(database.c_str(), &reader);
    run(reader, "BEGIN; SELECT * FROM t");
    foldWriteAheadLog(database);
    EXPECT_TRUE(fs::exists(database.native() + "-wal"));
    EXPECT_EQ(rowCount(database), 2U);
    sqlite3_close(reader);
}

TEST(WriteAheadLog, IsNotFoldedOnceItWasCancelled) {
    const TemporaryFolder folder;
    const auto database = databaseWithLog(folder);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(foldWriteAheadLog(database, stop.get_token()), CancellationError);
    EXPECT_TRUE(fs::exists(database.native() + "-wal"));
}

TEST(WriteAheadLog, IsUsedByADatabaseThatSaysSoOrHasOne) {
    const TemporaryFolder folder;
    const auto database = databaseWithLog(folder);
    EXPECT_TRUE(usesWriteAheadLog(database));
    fs::remove(database.native() + "-wal");
    EXPECT_TRUE(usesWriteAheadLog(database));
    foldWriteAheadLog(database);
    EXPECT_FALSE(usesWriteAheadLog(database));
    folder.write("copy-wal", "");
    EXPECT_TRUE(usesWriteAheadLog(database));
}

TEST(WriteAheadLog, IsNotUsedByWhatCannotBeRead) {
    const TemporaryFolder folder;
    EXPECT_FALSE(usesWriteAheadLog(folder / "missing"));
    EXPECT_FALSE(usesWriteAheadLog(folder.path()));
    EXPECT_FALSE(usesWriteAheadLog(folder.write("short", "ten bytes.")));
}

} // namespace
} // namespace quillbook
