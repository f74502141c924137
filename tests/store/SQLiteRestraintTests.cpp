#include "core/records/Cancellation.h"
#include "store/sqlite/SQLiteDatabase.h"
#include "store/sqlite/TableForm.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/NameRecorder.h"
#include "tests/support/TemporaryFolder.h"

#include <array>
#include <thread>

#include <gmock/gmock.h>
#include <sqlite3.h>

namespace quillbook {
namespace {

using test::TemporaryFolder;

constexpr const char* endless = "WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n) "
                                "SELECT max(x) FROM n";

class RestrainedDatabase : public testing::Test {
protected:
    std::filesystem::path made(const std::string& sql) const {
        sqlite3* handle = nullptr;
        sqlite3_open((folder / "database").c_str(), &handle);
        EXPECT_EQ(sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(handle);
        sqlite3_close(handle);
        return folder / "database";
    }
    std::stop_source stop;
    TemporaryFolder folder;
};

TEST_F(RestrainedDatabase, breaksAStatementOffWhenItIsToldToStop) {
    SQLiteDatabase database(made("CREATE TABLE t (x)"), SQLiteRestraint{.stop = stop.get_token()});
    std::jthread stopping([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        stop.request_stop();
    });
    EXPECT_THROW(database.query(endless), CancellationError);
}

TEST_F(RestrainedDatabase, answersAsAnyOtherUntilThen) {
    SQLiteDatabase database(made("CREATE TABLE t (x); INSERT INTO t VALUES (7)"), SQLiteRestraint{});
    EXPECT_EQ(database.query("SELECT x FROM t").front().integer("x"), 7);
}

TEST_F(RestrainedDatabase, refusesAValueThatIsTooLong) {
    const auto file = made("CREATE TABLE t (x); INSERT INTO t VALUES (zeroblob(2000000))");
    SQLiteDatabase restrained(file, SQLiteRestraint{.longestValue = 1'000'000});
    EXPECT_THROW(restrained.query("SELECT x FROM t"), SQLiteError);
    EXPECT_THROW(restrained.query("SELECT zeroblob(1000001)"), SQLiteError);
    SQLiteDatabase free(file);
    EXPECT_EQ(free.query("SELECT x FROM t").front().blob("x")->size(), 2'000'000U);
}

TEST_F(RestrainedDatabase, refusesAResultOutOfProportion) {
    const auto file = made("CREATE TABLE t (x); INSERT INTO t VALUES (zeroblob(1000000)); CREATE TABLE n (i);"
                           "WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < 100) "
                           "INSERT INTO n SELECT i FROM c");
    SQLiteDatabase restrained(file, SQLiteRestraint{});
    EXPECT_EQ(restrained.query("SELECT x FROM t, n LIMIT 50").size(), 50U);
    EXPECT_THROW(restrained.query("SELECT x FROM t, n"), SQLiteError);
    EXPECT_EQ(restrained.query("SELECT x FROM t").size(), 1U);
}

TEST_F(RestrainedDatabase, refusesStepsOutOfProportion) {
    SQLiteDatabase database(made("CREATE TABLE t (x)"), SQLiteRestraint{.steps = 1'000'000});
    EXPECT_THROW(database.query(endless), SQLiteError);
    EXPECT_EQ(database.query("SELECT 1 AS n").front().integer("n"), 1);
}

/// What of a large sort comes to stand in the folder for temporary files.
std::string filesOfASort(const std::filesystem::path& database,
                         const std::optional<SQLiteRestraint>& restraint) {
    return test::runInChild([&] {
        const TemporaryFolder temporary;
        sqlite3_temp_directory = sqlite3_mprintf("%s", temporary.path().c_str());
        const test::NameRecorder recorder(temporary.path());
        SQLiteDatabase(database, restraint).query("SELECT x FROM t ORDER BY substr(x, 5)");
        std::string names;
        for (const std::string& name : recorder.names())
            names += name.substr(0, 7);
        return names;
    });
}

TEST_F(RestrainedDatabase, sortsWithoutATraceOnTheDisk) {
    const auto file = made("CREATE TABLE t (x); WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM "
                           "n WHERE i < 30000) INSERT INTO t SELECT hex(randomblob(500)) FROM n");
    EXPECT_EQ(filesOfASort(file, SQLiteRestraint{}), "");
    // Else nothing is shown: any other connection spills.
    EXPECT_THAT(filesOfASort(file, std::nullopt), testing::HasSubstr("etilqs_"));
}

struct TableCase {
    const char* name;
    const char* schema;
    bool isOrdinary;
};

class TableForm : public RestrainedDatabase, public testing::WithParamInterface<TableCase> {};

TEST_P(TableForm, IsToldFromTheSchema) {
    SQLiteDatabase database(made(GetParam().schema));
    const std::array<std::string, 2> tables = {"other", "Files"};
    const std::array<std::string, 2> columns = {"a", "b"};
    EXPECT_EQ(areOrdinaryTables(database, tables, columns), GetParam().isOrdinary);
}

INSTANTIATE_TEST_SUITE_P(
    Table, TableForm,
    testing::Values(
        TableCase{"table", "CREATE TABLE Files (a TEXT PRIMARY KEY, b BLOB); CREATE INDEX i ON Files (b)",
                  true},
        TableCase{"tableWithoutRowIDs", "CREATE TABLE Files (a PRIMARY KEY) WITHOUT ROWID", true},
        TableCase{"tableWithATrigger",
                  "CREATE TABLE Files (a); CREATE TRIGGER g AFTER INSERT ON Files BEGIN SELECT 1; END", true},
        TableCase{"triggerOfTheSameName",
                  "CREATE TABLE Files (a); CREATE TRIGGER Files AFTER INSERT ON Files BEGIN SELECT 1; END",
                  true},
        TableCase{"virtualTableWithAForgedPage",
                  "CREATE TABLE other (a); CREATE VIRTUAL TABLE Files USING fts5(c); "
                  "PRAGMA writable_schema = ON; UPDATE sqlite_master SET rootpage = 2 WHERE name = 'Files'",
                  false},
        TableCase{"missing", "CREATE TABLE another (a)", true},
        TableCase{"viewOfAnotherName", "CREATE TABLE Files (a); CREATE VIEW v AS SELECT 1", true},
        TableCase{"view", "CREATE VIEW Files AS SELECT 1 AS a", false},
        TableCase{"viewInOtherLetters", "CREATE VIEW fILES AS SELECT 1 AS a", false},
        TableCase{"virtualTable", "CREATE VIRTUAL TABLE Files USING fts5(a)", false},
        TableCase{"generatedColumn", "CREATE TABLE Files (a, b AS (zeroblob(900000000)))", false},
        TableCase{"generatedColumnInOtherLetters", "CREATE TABLE Files (a, B AS (a + 1))", false},
        TableCase{"generatedColumnThatNobodyReads", "CREATE TABLE Files (a, b, c AS (a + 1))", true},
        TableCase{"storedGeneratedColumn", "CREATE TABLE Files (a, b AS (a + 1) STORED)", false}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace quillbook
