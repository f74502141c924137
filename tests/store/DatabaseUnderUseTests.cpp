#include "store/RepositoryError.h"
#include "tests/store/RepositoryFakes.h"
#include "tests/support/FolderSnapshot.h"

#include <chrono>
#include <set>
#include <thread>

#include <sqlite3.h>

namespace quillbook {
namespace {

class DatabaseUnderUse : public test::RepositoryTest {
protected:
    void SetUp() override { chat = addDirectChat(); }
    std::int64_t chat = 0;
};

TEST_F(DatabaseUnderUse, lockedDatabaseFailsAtOnce) {
    database.run("BEGIN EXCLUSIVE");
    const auto start = std::chrono::steady_clock::now();
    try {
        repository().searchConversations("", {});
        FAIL() << "nothing thrown";
    } catch (const SQLiteError& error) {
        EXPECT_EQ(error.code, 5) << "SQLITE_BUSY";
        EXPECT_EQ(error.message, "database is locked");
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2))
        << "nothing waits for a lock";
    database.run("COMMIT");
    EXPECT_EQ(repository().searchConversations("", {}).size(), 1U);
}

TEST_F(DatabaseUnderUse, idThatIsNoIntegerIsRefusedBeforeAnyStatement) {
    database.run("BEGIN EXCLUSIVE");
    EXPECT_THROW(repository().loadConversation(SourceID{"x"}, {}), RepositoryError);
    database.run("COMMIT");
}

TEST_F(DatabaseUnderUse, firstErrorStandsWhereTheMemoryRunsOut) {
    for (int count = 0; count < 2'000; ++count)
        database.addMessage(chat, {.guid = std::nullopt, .text = std::string(500, 'x')});
    repository().loadConversation(SourceID{"1"}, {});
    const sqlite3_int64 before = sqlite3_hard_heap_limit64(sqlite3_memory_used() + 100'000);
    try {
        repository().loadConversation(SourceID{"1"}, {});
        ADD_FAILURE() << "nothing thrown";
    } catch (const SQLiteError& error) {
        EXPECT_EQ(error.code, SQLITE_NOMEM);
    }
    sqlite3_hard_heap_limit64(before);
    EXPECT_EQ(repository().loadConversation(SourceID{"1"}, {}).messages.size(), 2'000U);
}

TEST_F(DatabaseUnderUse, loadSeesOneSnapshotWhileAnotherWrites) {
    database.run("PRAGMA journal_mode = WAL");
    const auto message = database.addMessage(chat, {.guid = "m", .text = "without"});
    database.addAttachment(message, {.guid = "a"});
    database.run("DELETE FROM message_attachment_join");
    // Each commit changes the text and the attachment together: a load that sees one without the other has
    // mixed two states.
    std::jthread writer([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            database.run("BEGIN; UPDATE message SET text = 'with'; INSERT INTO message_attachment_join "
                         "VALUES (1, 1); COMMIT");
            database.run(
                "BEGIN; UPDATE message SET text = 'without'; DELETE FROM message_attachment_join; COMMIT");
        }
    });
    MessagesRepository reader(database.file(), files, contacts);
    std::set<std::string> seen;
    for (int round = 0; round < 100'000 && (seen.size() < 2 || round < 300); ++round) {
        const auto loaded = reader.loadConversation(SourceID{"1"}, {}).messages.at(0);
        seen.insert(*loaded.text);
        ASSERT_EQ(loaded.attachments.size(), *loaded.text == "with" ? 1U : 0U);
    }
    EXPECT_EQ(seen.size(), 2U);
}

TEST_F(DatabaseUnderUse, libraryFolderStaysAsItWasButForSQLitesOwnCompanions) {
    for (const char* mode : {"DELETE", "WAL"}) {
        const test::TemporaryFolder library;
        {
            test::MessagesDatabase source(library / "chat.db");
            source.run(std::string("PRAGMA journal_mode = ") + mode);
            source.addMessage(source.addChat("g", "Chat", std::nullopt), {.guid = "m", .text = "hi"});
        }
        library.write("Attachments/aa/00/photo.jpg", "bytes");
        const auto before = test::snapshotOf(library.path());
        {
            MessagesRepository reader(library / "chat.db", files, contacts);
            reader.searchConversations("hi", {});
            reader.loadConversation(SourceID{"1"}, {});
        }
        auto after = test::snapshotOf(library.path());
        // In WAL mode SQLite puts its companions beside the database, which also touches the folder's own
        // time.
        after.erase("chat.db-wal");
        after.erase("chat.db-shm");
        EXPECT_EQ(after, before) << mode;
    }
}

/// Loads what a damaged database still gives; whatever happens, it is an error with words or a conversation.
void useWhole(const std::filesystem::path& file) {
    try {
        MessagesRepository reader(file, std::make_shared<test::KnownFiles>(),
                                  std::make_shared<test::KnownContacts>());
        reader.searchConversations("hi", {});
        reader.loadConversation(SourceID{"1"}, {});
    } catch (const DescribedError& error) {
        EXPECT_FALSE(error.description().empty());
    }
}

TEST_F(DatabaseUnderUse, truncatedAtAnyPlaceGivesAnErrorOrAConversation) {
    for (int count = 0; count < 200; ++count)
        database.addMessage(chat, {.guid = std::nullopt, .text = "hi there"});
    const std::string whole = test::readFile(database.file());
    for (std::size_t size = 0; size < whole.size(); size += 997) {
        useWhole(folder.write("cut.db", std::string_view(whole).substr(0, size)));
    }
}

TEST_F(DatabaseUnderUse, damagedBytesGiveAnErrorOrAConversation) {
    for (int count = 0; count < 50; ++count)
        database.addMessage(chat, {.guid = std::nullopt, .text = "hi there"});
    const std::string whole = test::readFile(database.file());
    for (std::size_t start = 0; start < whole.size(); start += 211) {
        std::string damaged = whole;
        for (std::size_t index = start; index < std::min(start + 9, damaged.size()); ++index)
            damaged[index] ^= '\x5A';
        useWhole(folder.write("damaged.db", damaged));
    }
}

TEST_F(DatabaseUnderUse, fileThatIsNoDatabaseSaysSo) {
    const auto file = folder.write("letter.db", std::string(5'000, 'x'));
    MessagesRepository reader(file, files, contacts);
    try {
        reader.searchConversations("", {});
        FAIL() << "nothing thrown";
    } catch (const SQLiteError& error) {
        EXPECT_EQ(error.code, 26) << "SQLITE_NOTADB";
        EXPECT_EQ(error.message, "file is not a database");
    }
}

} // namespace
} // namespace quillbook
