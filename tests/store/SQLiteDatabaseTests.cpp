#include "store/sqlite/SQLiteDatabase.h"
#include "tests/support/MessagesDatabase.h"
#include "tests/support/TemporaryFolder.h"

#include <thread>

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace quillbook {
namespace {

using test::MessagesDatabase;
using test::TemporaryFolder;

class SQLiteDatabaseTest : public testing::Test {
protected:
    TemporaryFolder folder;
    MessagesDatabase source{folder / "chat.db"};
};

template <typename Call>
SQLiteError errorOf(Call call) {
    try {
        call();
    } catch (const SQLiteError& error) {
        return error;
    }
    ADD_FAILURE() << "no SQLiteError";
    return {0, "", std::nullopt};
}

TEST_F(SQLiteDatabaseTest, missingFileFailsWithSQLitesOwnWords) {
    const SQLiteError error = errorOf([&] { SQLiteDatabase(folder / "absent.db"); });
    EXPECT_EQ(error.code, SQLITE_CANTOPEN);
    EXPECT_EQ(error.sql, std::nullopt);
    EXPECT_EQ(error.description(), "SQLite 14: unable to open database file");
    EXPECT_FALSE(std::filesystem::exists(folder / "absent.db"));
}

TEST_F(SQLiteDatabaseTest, allocationFailureAtOpeningHasWordsOfItsOwn) {
    // SQLite has no room for a connection once its heap is limited to less than it already holds.
    const sqlite3_int64 before = sqlite3_hard_heap_limit64(1);
    const SQLiteError error = errorOf([&] { SQLiteDatabase(source.file()); });
    sqlite3_hard_heap_limit64(before);
    EXPECT_EQ(error.code, SQLITE_NOMEM);
    EXPECT_EQ(error.message, "Unable to open database");
}

TEST_F(SQLiteDatabaseTest, emptyStatementFailsWithCodeZero) {
    SQLiteDatabase database(source.file());
    for (const char* sql : {"", "-- only words"}) {
        const SQLiteError error = errorOf([&] { database.query(sql); });
        EXPECT_EQ(error.code, SQLITE_OK);
        EXPECT_EQ(error.message, "not an error");
        EXPECT_EQ(error.sql, sql);
    }
}

TEST_F(SQLiteDatabaseTest, failedStatementIsNamedInTheDescription) {
    SQLiteDatabase database(source.file());
    const SQLiteError error = errorOf([&] { database.query("SELECT unknown FROM chat"); });
    EXPECT_EQ(error.description(), "SQLite 1: no such column: unknown [SELECT unknown FROM chat]");
}

TEST_F(SQLiteDatabaseTest, connectionStaysUsableAfterAFailure) {
    SQLiteDatabase database(source.file());
    EXPECT_THROW(database.query("nonsense"), SQLiteError);
    EXPECT_EQ(database.query("SELECT 1 AS one").front().integer("one"), 1);
}

TEST_F(SQLiteDatabaseTest, failureInMidResultDropsTheRows) {
    SQLiteDatabase database(source.file());
    const char* sql = "SELECT 1 AS n UNION ALL SELECT abs(-9223372036854775808)";
    EXPECT_EQ(errorOf([&] { database.query(sql); }).message, "integer overflow");
}

TEST_F(SQLiteDatabaseTest, writingIsRefused) {
    SQLiteDatabase database(source.file());
    EXPECT_EQ(errorOf([&] { database.query("INSERT INTO handle (id) VALUES ('x')"); }).code, SQLITE_READONLY);
}

TEST_F(SQLiteDatabaseTest, tellsNullEmptyBlobAndTextApart) {
    SQLiteDatabase database(source.file());
    const auto rows = database.query("SELECT NULL AS none, zeroblob(0) AS bytes, '' AS words, 1.5 AS real");
    EXPECT_EQ(rows.front().value("none"), SQLiteValue(SQLiteNull()));
    EXPECT_EQ(rows.front().value("bytes"), SQLiteValue(std::vector<std::uint8_t>()));
    EXPECT_EQ(rows.front().value("words"), SQLiteValue(std::string()));
    EXPECT_EQ(rows.front().value("real"), SQLiteValue(1.5));
}

TEST_F(SQLiteDatabaseTest, bindsEveryCase) {
    SQLiteDatabase database(source.file());
    const std::vector<SQLiteValue> bindings = {std::int64_t{5}, 2.5, std::string("a\0b", 3),
                                               std::vector<std::uint8_t>{}, SQLiteNull()};
    const auto row =
        database
            .query("SELECT typeof(?1) AS a, typeof(?2) AS b, ?3 AS c, typeof(?4) AS d, length(?4) AS e, "
                   "typeof(?5) AS f",
                   bindings)
            .front();
    EXPECT_EQ(row.text("a"), "integer");
    EXPECT_EQ(row.text("b"), "real");
    EXPECT_EQ(row.text("c"), "a") << "a text ends at its first NUL";
    EXPECT_EQ(row.text("d"), "blob");
    EXPECT_EQ(row.integer("e"), 0);
    EXPECT_EQ(row.text("f"), "null");
}

TEST_F(SQLiteDatabaseTest, bindingTooManyValuesFails) {
    SQLiteDatabase database(source.file());
    const SQLiteValue value = std::int64_t{1};
    EXPECT_EQ(errorOf([&] { database.query("SELECT 1", {&value, 1}); }).code, SQLITE_RANGE);
}

TEST_F(SQLiteDatabaseTest, textThatIsNotUTF8ComesBackRepaired) {
    SQLiteDatabase database(source.file());
    EXPECT_EQ(database.query("SELECT CAST(x'41FF42' AS TEXT) AS t").front().text("t"), "A\xEF\xBF\xBD"
                                                                                       "B");
}

TEST_F(SQLiteDatabaseTest, rightmostOfTwoColumnsOfOneNameCounts) {
    SQLiteDatabase database(source.file());
    EXPECT_EQ(database.query("SELECT 1 AS n, 2 AS n").front().integer("n"), 2);
}

TEST_F(SQLiteDatabaseTest, rowsKeepTheOrderOfTheStatement) {
    SQLiteDatabase database(source.file());
    const auto rows = database.query("SELECT 3 AS n UNION ALL SELECT 1 UNION ALL SELECT 2");
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].integer("n"), 3);
    EXPECT_EQ(rows[2].integer("n"), 2);
}

TEST_F(SQLiteDatabaseTest, pathWithPercentSignsIsTakenAsItStands) {
    const MessagesDatabase awkward(folder / "100%25 ?mode=rwc#x" / "chat.db");
    EXPECT_EQ(SQLiteDatabase(awkward.file()).query("SELECT COUNT(*) AS n FROM chat").front().integer("n"), 0);
}

TEST_F(SQLiteDatabaseTest, servesManyThreads) {
    SQLiteDatabase database(source.file());
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&database, thread] {
            for (int round = 0; round < 50; ++round) {
                const SQLiteValue number = std::int64_t{thread};
                EXPECT_EQ(database.query("SELECT ? AS n", {&number, 1}).front().integer("n"), thread);
            }
        });
    }
}

} // namespace
} // namespace quillbook
