#include "tests/backup-writer/IndependentBackup.h"
#include "tests/sample/LibraryUnderTest.h"
#include "tests/support/FolderSnapshot.h"
#include "tests/support/MessagesDatabase.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/backup/BackupWriter.h"

#include <fstream>

#include <gmock/gmock.h>

namespace quillbook::sample {
namespace {

using quillbook::test::MessagesDatabase;
using quillbook::test::readFile;
using quillbook::test::snapshotOf;
using quillbook::test::TemporaryFolder;
using test::IndependentBackup;
using test::queryColumn;
using test::queryNumber;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr const char* databasePath = "Library/SMS/sms.db";

std::filesystem::path messagesFolder() {
    return test::defaultHome() / "Library" / "Messages";
}

/// A backup of a library, and the database that lies in it, taken out with and without its companions.
class BackupOfLibrary {
public:
    explicit BackupOfLibrary(const std::filesystem::path& messages, bool isEncrypted = true) {
        BackupDescription description;
        description.folder = folder_ / "backup";
        if (isEncrypted) description.encryption = BackupEncryption{.password = "pier", .rounds = 10};
        BackupWriter writer(description);
        addMessagesLibrary(writer, messages);
        writer.finish();
        backup_ = std::make_unique<IndependentBackup>(
            description.folder, isEncrypted ? std::optional<std::string>("pier") : std::nullopt);
        main_ = folder_.write("main/sms.db", stored(""));
        whole_ = folder_.write("whole/sms.db", stored(""));
        folder_.write("whole/sms.db-wal", stored("-wal"));
        folder_.write("whole/sms.db-shm", stored("-shm"));
    }

    const IndependentBackup& backup() const { return *backup_; }
    /// As it stands without its write-ahead log.
    const std::filesystem::path& mainFile() const { return main_; }
    const std::filesystem::path& whole() const { return whole_; }
    std::string stored(const std::string& suffix) const {
        return backup_->contents("HomeDomain", databasePath + suffix);
    }
    std::int64_t missing(const std::filesystem::path& source) const {
        return queryNumber(source, "SELECT count(*) FROM message") -
               queryNumber(main_, "SELECT count(*) FROM message");
    }

private:
    TemporaryFolder folder_;
    std::unique_ptr<IndependentBackup> backup_;
    std::filesystem::path main_;
    std::filesystem::path whole_;
};

const BackupOfLibrary& sampleBackup() {
    static const BackupOfLibrary backup(messagesFolder());
    return backup;
}

/// All columns of a table with the rows' numbers, but for the paths, which differ on a device.
std::vector<std::string> dump(const std::filesystem::path& database, const std::string& table) {
    const auto columns =
        queryColumn(database, "SELECT group_concat('quote(\"' || name || '\")', ' || '','' || ') FROM "
                              "pragma_table_info('" +
                                  table + "') WHERE name <> 'filename'");
    return queryColumn(database,
                       "SELECT rowid || ':' || " + columns.at(0) + " FROM \"" + table + "\" ORDER BY rowid");
}

TEST(MessagesLibraryInBackup, keepsItsNewestMessagesInTheLogAlone) {
    const auto source = messagesFolder() / "chat.db";
    EXPECT_EQ(sampleBackup().missing(source), 75);
    EXPECT_EQ(queryNumber(sampleBackup().mainFile(), "SELECT max(ROWID) FROM message"),
              queryNumber(source, "SELECT ROWID FROM message ORDER BY ROWID DESC LIMIT 1 OFFSET 75"));
}

TEST(MessagesLibraryInBackup, leavesNoBytesOfTheNewestMessageInTheMainFile) {
    const auto guid =
        queryColumn(messagesFolder() / "chat.db", "SELECT guid FROM message ORDER BY ROWID DESC LIMIT 1");
    EXPECT_THAT(sampleBackup().stored("-wal"), HasSubstr(guid.at(0)));
    const std::string body = queryColumn(messagesFolder() / "chat.db",
                                         "SELECT text FROM message WHERE length(text) > 30 ORDER BY ROWID "
                                         "DESC LIMIT 1")
                                 .at(0);
    EXPECT_THAT(sampleBackup().stored("-wal"), HasSubstr(body));
    EXPECT_THAT(sampleBackup().stored(""), Not(HasSubstr(body)));
}

class TableOfBackup : public testing::TestWithParam<const char*> {};

TEST_P(TableOfBackup, comesOutOfMainFileAndLogAsItWas) {
    const auto expected = dump(messagesFolder() / "chat.db", GetParam());
    ASSERT_FALSE(expected.empty());
    EXPECT_TRUE(dump(sampleBackup().whole(), GetParam()) == expected);
}

INSTANTIATE_TEST_SUITE_P(Table, TableOfBackup,
                         testing::Values("message", "chat", "handle", "attachment", "chat_message_join",
                                         "chat_handle_join", "message_attachment_join", "deleted_messages",
                                         "sqlite_sequence"),
                         [](const auto& test) { return std::string(test.param); });

TEST(MessagesLibraryInBackup, hasADatabaseWithoutDamage) {
    EXPECT_EQ(queryColumn(sampleBackup().mainFile(), "PRAGMA integrity_check").at(0), "ok");
    EXPECT_EQ(queryColumn(sampleBackup().whole(), "PRAGMA integrity_check").at(0), "ok");
}

TEST(MessagesLibraryInBackup, hasADatabaseThatIsMarkedForALog) {
    EXPECT_EQ(sampleBackup().stored("").substr(18, 2), "\2\2");
    EXPECT_EQ(sampleBackup().stored("-shm").size() % 32'768, 0U);
}

TEST(MessagesLibraryInBackup, hasTheAttachmentsPathsOfADeviceInBothForms) {
    const auto paths = queryColumn(sampleBackup().whole(), "SELECT filename FROM attachment");
    EXPECT_THAT(paths, Contains(testing::StartsWith("~/Library/SMS/Attachments/")));
    EXPECT_THAT(paths, Contains(testing::StartsWith("/var/mobile/Library/SMS/Attachments/")));
    EXPECT_THAT(paths, Not(Contains(HasSubstr("Library/Messages"))));
}

TEST(MessagesLibraryInBackup, holdsEveryAttachmentOfTheLibrary) {
    const auto files = test::filesBelow(messagesFolder() / "Attachments");
    ASSERT_GT(files.size(), 40U);
    for (const auto& [path, contents] : files) {
        EXPECT_TRUE(sampleBackup().backup().contents("MediaDomain", "Library/SMS/Attachments/" + path) ==
                    contents)
            << path;
    }
}

TEST(MessagesLibraryInBackup, givesNoKeyToAnEmptyAttachment) {
    int count = 0;
    for (const auto& row : sampleBackup().backup().rows()) {
        if (row.flags != 1 || row.size != 0) continue;
        ++count;
        EXPECT_FALSE(row.key.has_value());
        EXPECT_EQ(std::filesystem::file_size(sampleBackup().backup().storedFile(row)), 0U);
    }
    EXPECT_EQ(count, 1);
}

TEST(MessagesLibraryInBackup, listsAnAttachmentThatItDoesNotHold) {
    int count = 0;
    for (const auto& row : sampleBackup().backup().rows()) {
        if (row.flags != 1 || std::filesystem::exists(sampleBackup().backup().storedFile(row))) continue;
        ++count;
        EXPECT_GT(row.size, 0);
        EXPECT_EQ(row.domain, "MediaDomain");
    }
    EXPECT_EQ(count, 1);
}

TEST(MessagesLibraryInBackup, leavesTheLibraryAsItWas) {
    const auto before = snapshotOf(messagesFolder());
    const BackupOfLibrary backup(messagesFolder(), false);
    EXPECT_EQ(snapshotOf(messagesFolder()), before);
}

TEST(MessagesLibraryInBackup, isTheSameByteForByteEachTime) {
    const BackupOfLibrary other(messagesFolder());
    EXPECT_TRUE(test::filesBelow(other.backup().folder()) ==
                test::filesBelow(sampleBackup().backup().folder()));
}

TEST(MessagesLibraryInBackup, takesTheRowsOfALibrarysOwnLog) {
    const TemporaryFolder folder;
    MessagesDatabase library(folder.write("chat.db", ""));
    library.run("PRAGMA journal_mode = WAL");
    const auto chat = library.addChat("iMessage;-;+14155550101", {}, "+14155550101");
    for (int number = 0; number < 30; ++number)
        library.addMessage(chat, {.guid = "message " + std::to_string(number), .text = "Ahoy"});
    ASSERT_TRUE(std::filesystem::exists(folder / "chat.db-wal"));
    const BackupOfLibrary backup(folder.path());
    EXPECT_EQ(backup.missing(folder / "chat.db"), 1);
    EXPECT_EQ(queryNumber(backup.whole(), "SELECT count(*) FROM chat_message_join"), 30);
}

TEST(MessagesLibraryInBackup, keepsTheOnlyMessageInTheLog) {
    const TemporaryFolder folder;
    MessagesDatabase library(folder.write("chat.db", ""), MessagesDatabase::Age::withoutOptionalColumns);
    const auto chat = library.addChat("iMessage;-;+14155550101", {}, "+14155550101");
    const auto message = library.addMessage(chat, {.guid = "only", .text = "Ahoy"});
    library.addAttachment(message, {.guid = "picture", .filename = "~/Library/Messages/Attachments/a/b.jpg"});
    const BackupOfLibrary backup(folder.path());
    EXPECT_EQ(queryNumber(backup.mainFile(), "SELECT count(*) FROM message"), 0);
    EXPECT_EQ(queryNumber(backup.mainFile(), "SELECT count(*) FROM attachment"), 0);
    EXPECT_EQ(queryColumn(backup.whole(), "SELECT guid FROM message"), std::vector<std::string>{"only"});
    EXPECT_EQ(queryColumn(backup.whole(), "SELECT guid FROM attachment"),
              std::vector<std::string>{"picture"});
}

} // namespace
} // namespace quillbook::sample
