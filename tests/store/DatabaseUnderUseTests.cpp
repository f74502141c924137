#include "store/RepositoryError.h"
#include "tests/store/RepositoryFakes.h"
#include "tests/support/FolderSnapshot.h"

#include <atomic>
#include <fstream>
#include <thread>

namespace quillbook {
namespace {

class DatabaseUnderUse : public test::RepositoryTest {
protected:
    void SetUp() override { chat = addDirectChat(); }
    std::int64_t chat = 0;
};

TEST_F(DatabaseUnderUse, lockedDatabaseFailsAtOnce) {
    database.run("BEGIN EXCLUSIVE");
    try {
        repository().searchConversations("", {});
        FAIL() << "nothing thrown";
    } catch (const SQLiteError& error) {
        EXPECT_EQ(error.code, 5) << "SQLITE_BUSY";
        EXPECT_EQ(error.message, "database is locked");
    }
    database.run("COMMIT");
    EXPECT_EQ(repository().searchConversations("", {}).size(), 1U);
}

TEST_F(DatabaseUnderUse, loadSeesOneSnapshotWhileAnotherWrites) {
    database.run("PRAGMA journal_mode = WAL");
    std::atomic<bool> isDone = false;
    // Each commit adds a message together with its attachment: a load that sees one without the other has
    // mixed two states.
    std::jthread writer([&] {
        test::MessagesDatabase& other = database;
        for (int commit = 0; commit < 300 && !isDone; ++commit) {
            other.run("BEGIN");
            const auto message = other.addMessage(chat, {.guid = std::nullopt, .text = "x"});
            other.addAttachment(message, {.guid = "a"});
            other.run("COMMIT");
        }
    });
    MessagesRepository reader(database.file(), files, contacts);
    for (int round = 0; round < 25; ++round) {
        for (const auto& message : reader.loadConversation(SourceID{"1"}, {}).messages) {
            EXPECT_EQ(message.attachments.size(), 1U);
        }
        EXPECT_EQ(reader.searchConversations("", {}).size(), 1U);
    }
    isDone = true;
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
