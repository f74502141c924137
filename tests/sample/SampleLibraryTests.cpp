#include "store/LocalLibraryAttachmentLocator.h"
#include "store/MessagesRepository.h"
#include "tests/sample/LibraryUnderTest.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/sample/SampleLibrary.h"
#include "tools/writing/SampleError.h"

#include <set>

#include <gmock/gmock.h>

namespace quillbook::sample {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::SizeIs;

SampleOptions optionsFor(const std::filesystem::path& home) {
    SampleOptions options;
    options.home = home;
    return options;
}

std::int64_t number(const std::string& sql) {
    return test::queryNumber(test::defaultLibrary().database, sql);
}

std::vector<std::string> column(const std::string& sql) {
    return test::queryColumn(test::defaultLibrary().database, sql);
}

TEST(SampleLibrary, isTheSameByteForByteEachTime) {
    const quillbook::test::TemporaryFolder other;
    writeSampleLibrary(optionsFor(other.path()));
    const auto first = test::filesBelow(test::defaultHome());
    const auto second = test::filesBelow(other.path());
    ASSERT_EQ(first.size(), second.size());
    for (const auto& [path, contents] : first)
        EXPECT_TRUE(second.at(path) == contents) << path;
}

TEST(SampleLibrary, differsWithTheSeed) {
    const quillbook::test::TemporaryFolder other;
    SampleOptions options = optionsFor(other.path());
    options.seed = 2;
    options.messageCount = 300;
    options.attachmentCount = 3;
    const SampleReport report = writeSampleLibrary(options);
    const auto guids = test::queryColumn(report.database, "SELECT guid FROM message");
    for (const std::string& guid : column("SELECT guid FROM message"))
        EXPECT_THAT(guids, testing::Not(Contains(guid)));
}

TEST(SampleLibrary, hasExactlyTheRowsAskedFor) {
    EXPECT_EQ(number("SELECT COUNT(*) FROM message"), 1'500);
    EXPECT_EQ(number("SELECT COUNT(*) FROM chat_message_join"), 1'500);
    EXPECT_EQ(number("SELECT COUNT(*) FROM attachment"), 50);
}

TEST(SampleLibrary, reportsWhatItWrote) {
    const SampleReport& report = test::defaultLibrary();
    EXPECT_EQ(report.chatCount, number("SELECT COUNT(*) FROM chat"));
    EXPECT_EQ(report.reactionCount,
              number("SELECT COUNT(*) FROM message WHERE associated_message_type >= 2000"));
    EXPECT_EQ(report.messageCount + report.reactionCount, 1'500);
    EXPECT_EQ(report.attachmentCount, 50);
    EXPECT_EQ(static_cast<std::size_t>(report.attachmentsOnDisk),
              test::filesBelow(report.attachments).size());
    EXPECT_EQ(report.attachmentsOnDisk + report.attachmentsMissing, 50);
    EXPECT_TRUE(std::filesystem::is_regular_file(report.contacts));
}

class OtherRowCounts : public testing::TestWithParam<std::int64_t> {};

TEST_P(OtherRowCounts, areMetExactly) {
    const quillbook::test::TemporaryFolder home;
    SampleOptions options = optionsFor(home.path());
    options.messageCount = GetParam();
    options.attachmentCount = 4;
    const SampleReport report = writeSampleLibrary(options);
    EXPECT_EQ(test::queryNumber(report.database, "SELECT COUNT(*) FROM message"), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, OtherRowCounts, testing::Values(0, 1, 17, 400, 5'003));

TEST(SampleLibrary, hasManySmallFilesWhereManyAreAskedFor) {
    const quillbook::test::TemporaryFolder home;
    SampleOptions options = optionsFor(home.path());
    options.messageCount = 200;
    options.attachmentCount = 300;
    const SampleReport report = writeSampleLibrary(options);
    EXPECT_EQ(report.attachmentCount, 300);
    EXPECT_EQ(test::queryNumber(report.database, "SELECT COUNT(*) FROM message_attachment_join"), 300);
}

TEST(SampleLibrary, leavesALibraryThatStandsThereAsItIs) {
    const quillbook::test::TemporaryFolder home;
    home.write("Library/Messages/chat.db", "someone's own");
    try {
        writeSampleLibrary(optionsFor(home.path()));
        FAIL() << "written over";
    } catch (const SampleError& error) {
        EXPECT_EQ(error.reason, SampleError::Reason::libraryExists);
    }
    EXPECT_EQ(test::filesBelow(home.path()),
              (std::map<std::string, std::string>{{"Library/Messages/chat.db", "someone's own"}}));
}

TEST(SampleDatabase, isSound) {
    EXPECT_EQ(column("PRAGMA integrity_check"), std::vector<std::string>{"ok"});
    EXPECT_THAT(column("PRAGMA foreign_key_check"), IsEmpty());
}

TEST(SampleDatabase, standsAloneWithoutAWriteAheadLog) {
    EXPECT_EQ(column("PRAGMA journal_mode"), std::vector<std::string>{"delete"});
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(test::defaultHome() / "Library/Messages")) {
        names.insert(entry.path().filename().string());
    }
    EXPECT_EQ(names, (std::set<std::string>{"Attachments", "chat.db"}));
}

struct TableColumns {
    const char* table;
    std::vector<std::string> columns;
};

void PrintTo(const TableColumns& table, std::ostream* stream) {
    *stream << table.table;
}

class SchemaOf : public testing::TestWithParam<TableColumns> {};

TEST_P(SchemaOf, hasTheColumns) {
    const std::string sql = "SELECT name FROM pragma_table_info('" + std::string(GetParam().table) + "')";
    EXPECT_THAT(column(sql), IsSupersetOf(GetParam().columns));
}

INSTANTIATE_TEST_SUITE_P(
    Table, SchemaOf,
    testing::Values(TableColumns{"chat",
                                 {"ROWID", "guid", "display_name", "chat_identifier", "service_name", "style",
                                  "state", "group_id", "last_addressed_handle"}},
                    TableColumns{"handle", {"ROWID", "id", "country", "service", "uncanonicalized_id"}},
                    TableColumns{"chat_handle_join", {"chat_id", "handle_id"}},
                    TableColumns{"chat_message_join", {"chat_id", "message_id", "message_date"}},
                    TableColumns{"message",
                                 {"ROWID",
                                  "guid",
                                  "text",
                                  "attributedBody",
                                  "handle_id",
                                  "date",
                                  "is_from_me",
                                  "service",
                                  "subject",
                                  "associated_message_guid",
                                  "associated_message_type",
                                  "thread_originator_guid",
                                  "date_edited",
                                  "date_retracted",
                                  "account_guid",
                                  "date_read",
                                  "date_delivered",
                                  "is_read",
                                  "item_type",
                                  "expressive_send_style_id",
                                  "thread_originator_part",
                                  "payload_data",
                                  "message_summary_info",
                                  "balloon_bundle_id",
                                  "cache_has_attachments",
                                  "is_sent",
                                  "was_data_detected",
                                  "country"}},
                    TableColumns{"message_attachment_join", {"message_id", "attachment_id"}},
                    TableColumns{"attachment",
                                 {"ROWID", "guid", "filename", "transfer_name", "total_bytes", "mime_type",
                                  "uti", "user_info", "created_date", "is_outgoing", "hide_attachment"}},
                    TableColumns{"deleted_messages", {"ROWID", "guid"}},
                    TableColumns{"sync_deleted_messages", {"ROWID", "guid", "recordID"}},
                    TableColumns{"message_processing_task", {"ROWID", "guid", "task_flags"}},
                    TableColumns{"kvtable", {"ROWID", "key", "value"}},
                    TableColumns{"_SqliteDatabaseProperties", {"key", "value"}}),
    [](const auto& testCase) { return std::string(testCase.param.table); });

/// A thing that the library must hold at least once, as a statement that counts it.
struct Feature {
    const char* name;
    std::string sql;
};

void PrintTo(const Feature& feature, std::ostream* stream) {
    *stream << feature.name;
}

class SampleFeature : public testing::TestWithParam<Feature> {};

TEST_P(SampleFeature, isThere) {
    EXPECT_GE(number(GetParam().sql), 1);
}

std::string chatsWhere(const std::string& condition) {
    return "SELECT COUNT(*) FROM chat c WHERE " + condition;
}
std::string messagesWhere(const std::string& condition) {
    return "SELECT COUNT(*) FROM message m WHERE " + condition;
}
std::string attachmentsWhere(const std::string& condition) {
    return "SELECT COUNT(*) FROM attachment WHERE " + condition;
}

const std::string handlesOfChat = "(SELECT COUNT(*) FROM chat_handle_join WHERE chat_id = c.ROWID)";
const std::string messagesOfChat = "(SELECT COUNT(*) FROM chat_message_join WHERE chat_id = c.ROWID)";

INSTANTIATE_TEST_SUITE_P(
    Chats, SampleFeature,
    testing::Values(
        Feature{"namedGroup", chatsWhere("style = 43 AND display_name != '' AND " + handlesOfChat + " > 2")},
        Feature{"unnamedGroup", chatsWhere("style = 43 AND display_name = '' AND " + handlesOfChat + " > 1")},
        Feature{
            "senderWhoLeft",
            "SELECT COUNT(*) FROM message m JOIN chat_message_join j ON j.message_id = m.ROWID JOIN chat c "
            "ON c.ROWID = j.chat_id WHERE c.style = 43 AND m.handle_id != 0 AND m.handle_id NOT IN "
            "(SELECT handle_id FROM chat_handle_join WHERE chat_id = c.ROWID)"},
        Feature{"withoutMessages", chatsWhere(messagesOfChat + " = 0 AND " + handlesOfChat + " = 1")},
        Feature{"withoutHandles", chatsWhere(handlesOfChat + " = 0 AND " + messagesOfChat + " > 0")},
        Feature{"email", chatsWhere("chat_identifier LIKE '%@%' AND " + messagesOfChat + " > 20")},
        Feature{"sms", chatsWhere("service_name = 'SMS' AND " + messagesOfChat + " > 20")},
        Feature{"iMessage", chatsWhere("service_name = 'iMessage'")}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Messages, SampleFeature,
    testing::Values(
        Feature{"dateInSeconds", messagesWhere("date BETWEEN 1 AND 999999999999")},
        Feature{"dateInNanoseconds", messagesWhere("date > 1000000000000")},
        Feature{"textAndArchive",
                messagesWhere("text IS NOT NULL AND instr(attributedBody, X'73747265616D7479706564') = 3")},
        Feature{
            "archiveOnly",
            messagesWhere("text IS NULL AND instr(attributedBody, CAST('NSAttributedString' AS BLOB)) > 0")},
        Feature{"mutableArchiveOnly",
                messagesWhere("text IS NULL AND instr(attributedBody, CAST('NSMutableString' AS BLOB)) > 0")},
        Feature{"longArchive", messagesWhere("text IS NULL AND instr(attributedBody, X'012B81') > 0")},
        Feature{"shortArchive",
                messagesWhere(
                    "text IS NULL AND length(attributedBody) < 250 AND instr(attributedBody, X'012B') > 0")},
        Feature{"keyedArchive",
                messagesWhere("text IS NULL AND substr(attributedBody, 1, 8) = X'62706C6973743030'")},
        Feature{"unreadable", messagesWhere("text IS NULL AND substr(attributedBody, 1, 1) = X'FE'")},
        Feature{"emptyText", messagesWhere("text = '' AND attributedBody IS NULL")},
        Feature{"noBody",
                messagesWhere(
                    "text IS NULL AND attributedBody IS NULL AND date_retracted = 0 AND item_type = 0")},
        Feature{"subject", messagesWhere("subject != ''")},
        Feature{"edited", messagesWhere("date_edited > date AND message_summary_info IS NOT NULL")},
        Feature{"retracted",
                messagesWhere("date_retracted > date AND text IS NULL AND attributedBody IS NULL")},
        Feature{"newGroupName", messagesWhere("item_type = 2 AND group_title != ''")},
        Feature{"someoneLeft", messagesWhere("item_type = 3")},
        Feature{"sendEffect", messagesWhere("expressive_send_style_id LIKE 'com.apple.messages.effect.%'")},
        Feature{"reply", messagesWhere("thread_originator_guid IN (SELECT guid FROM message)")},
        Feature{"replyToADeletedOne",
                messagesWhere("thread_originator_guid IN (SELECT guid FROM deleted_messages) AND "
                              "thread_originator_guid NOT IN (SELECT guid FROM message)")},
        Feature{"attachmentInTheText",
                messagesWhere("text LIKE char(65532) || '%' AND cache_has_attachments = 1")}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

std::string reactionsWhere(const std::string& condition) {
    return messagesWhere("associated_message_type >= 2000 AND " + condition);
}

INSTANTIATE_TEST_SUITE_P(
    Reactions, SampleFeature,
    testing::Values(
        Feature{"loved", reactionsWhere("associated_message_type = 2000")},
        Feature{"liked", reactionsWhere("associated_message_type = 2001")},
        Feature{"disliked", reactionsWhere("associated_message_type = 2002")},
        Feature{"laughed", reactionsWhere("associated_message_type = 2003")},
        Feature{"emphasized", reactionsWhere("associated_message_type = 2004")},
        Feature{"questioned", reactionsWhere("associated_message_type = 2005")},
        Feature{"emoji", reactionsWhere("associated_message_type = 2006 AND associated_message_emoji != ''")},
        Feature{"removed", reactionsWhere("associated_message_type BETWEEN 3000 AND 3005")},
        Feature{"withoutTarget", reactionsWhere("associated_message_guid IS NULL")},
        Feature{"toAPart",
                reactionsWhere("substr(associated_message_guid, 1, 4) = 'p:0/' AND "
                               "substr(associated_message_guid, 5) IN (SELECT guid FROM message)")},
        Feature{"toABalloon",
                reactionsWhere("substr(associated_message_guid, 1, 3) = 'bp:' AND "
                               "substr(associated_message_guid, 4) IN (SELECT guid FROM message)")}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Attachments, SampleFeature,
    testing::Values(
        Feature{"jpeg", attachmentsWhere("mime_type = 'image/jpeg'")},
        Feature{"png", attachmentsWhere("mime_type = 'image/png'")},
        Feature{"gif", attachmentsWhere("mime_type = 'image/gif'")},
        Feature{"video", attachmentsWhere("mime_type = 'video/mp4'")},
        Feature{"audio", attachmentsWhere("mime_type = 'audio/mp4'")},
        Feature{"pdf", attachmentsWhere("mime_type = 'application/pdf'")},
        Feature{"plainText", attachmentsWhere("mime_type = 'text/plain'")},
        Feature{"csv", attachmentsWhere("mime_type = 'text/csv'")},
        Feature{"vCard", attachmentsWhere("mime_type = 'text/vcard'")},
        Feature{"withoutPath", attachmentsWhere("filename IS NULL")},
        Feature{"storedBelowTheTilde",
                attachmentsWhere(
                    "filename GLOB '~/Library/Messages/Attachments/[0-9a-f][0-9a-f]/[01][0-9]/*/*'")},
        Feature{"awkwardName",
                attachmentsWhere(
                    "transfer_name LIKE '../../%:%🚗%الطريق%' AND length(CAST(transfer_name AS BLOB)) > 255")},
        Feature{"equalNames", "SELECT COUNT(*) - COUNT(DISTINCT transfer_name) FROM attachment WHERE "
                              "transfer_name = 'cover.jpeg'"}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

TEST(SampleAttachments, lieWhereTheirRecordsSay) {
    std::set<std::string> stored;
    for (const std::string& path :
         column("SELECT substr(filename, 3) FROM attachment WHERE filename IS NOT NULL"))
        stored.insert(path);
    int found = 0;
    for (const auto& [path, contents] : test::filesBelow(test::defaultHome())) {
        if (!path.starts_with("Library/Messages/Attachments/")) continue;
        EXPECT_THAT(stored, Contains(path));
        ++found;
    }
    EXPECT_EQ(found, test::defaultLibrary().attachmentsOnDisk);
    EXPECT_GE(test::defaultLibrary().attachmentsMissing, 2);
}

TEST(SampleAttachments, haveTheSizeThatTheirRecordsSay) {
    int empty = 0;
    for (const auto& [path, contents] : test::filesBelow(test::defaultHome() / "Library/Messages")) {
        if (!path.starts_with("Attachments/")) continue;
        const std::int64_t size =
            number("SELECT total_bytes FROM attachment WHERE filename = '~/Library/Messages/" + path + "'");
        empty += contents.empty() ? 1 : 0;
        if (contents.empty()) continue;
        EXPECT_EQ(static_cast<std::int64_t>(contents.size()), size) << path;
    }
    EXPECT_EQ(empty, 1);
}

TEST(SampleLibrary, hasOneConversationRicherThanTheOthers) {
    const std::string attachments =
        "SELECT c.chat_id FROM chat_message_join c JOIN message_attachment_join a ON a.message_id = "
        "c.message_id GROUP BY 1 ORDER BY COUNT(*) DESC LIMIT 1";
    const std::string reactions =
        "SELECT c.chat_id FROM chat_message_join c JOIN message m ON m.ROWID = c.message_id WHERE "
        "m.associated_message_type >= 2000 GROUP BY 1 ORDER BY COUNT(*) DESC LIMIT 1";
    const std::string replies =
        "SELECT c.chat_id FROM chat_message_join c JOIN message m ON m.ROWID = c.message_id WHERE "
        "m.thread_originator_guid IS NOT NULL GROUP BY 1 ORDER BY COUNT(*) DESC LIMIT 1";
    for (const std::string& sql : {attachments, reactions, replies})
        EXPECT_EQ(number(sql), test::defaultLibrary().richestChatID);
    EXPECT_EQ(test::defaultLibrary().richestChatTitle, "Lake House 🛶");
}

TEST(SampleLibrary, speaksManyLanguages) {
    for (const char* word : {"Schlaf gut", "Qué noche", "Que saudade", "桜が満開", "رمضان كريم", "שנה טובה",
                             "दीवाली", "한강", "соняшники", "新年快乐", "🎉"}) {
        const std::string sql =
            "SELECT COUNT(*) FROM message WHERE instr(CAST(ifnull(text, '') AS BLOB), CAST('" +
            std::string(word) + "' AS BLOB)) OR instr(attributedBody, CAST('" + std::string(word) +
            "' AS BLOB))";
        EXPECT_GE(number(sql), 1) << word;
    }
}

TEST(SampleLibrary, countsEveryReactionAfterWhatItAnswers) {
    EXPECT_EQ(number("SELECT COUNT(*) FROM message r JOIN message t ON t.guid = "
                     "substr(r.associated_message_guid, 5) WHERE r.date <= t.date"),
              0);
}

/// No names for anyone.
class NoContacts final : public ContactResolving {
public:
    ContactIdentities resolve(const std::vector<std::string>& /*addresses*/) override { return {}; }
};

MessagesRepository repository() {
    const auto folder = test::defaultHome() / "Library" / "Messages";
    return {folder / "chat.db", std::make_shared<LocalLibraryAttachmentLocator>(folder, test::defaultHome()),
            std::make_shared<NoContacts>()};
}

TEST(SampleLibrary, loadsWithWarningsForTheUnreadableBodiesAndTheLostReactionAlone) {
    MessagesRepository library = repository();
    std::map<std::string, int> warnings;
    std::int64_t rows = 0;
    for (const ConversationSummary& summary : library.searchConversations("", {})) {
        const ArchiveConversation conversation = library.loadConversation(summary.id, {});
        rows += conversation.sourceMessageCount;
        for (const ArchiveWarning& warning : conversation.warnings)
            ++warnings[warning.code];
    }
    EXPECT_EQ(rows, 1'500);
    EXPECT_EQ(warnings, (std::map<std::string, int>{{"unresolved_reaction", 1}, {"unsupported_payload", 2}}));
}

TEST(SampleLibrary, showsTheTextOfEveryChatsNewestMessage) {
    for (const ConversationSummary& summary : repository().searchConversations("", {})) {
        EXPECT_EQ(summary.lastMessage.value_or("").empty(), summary.messageCount == 0) << summary.title;
    }
}

} // namespace
} // namespace quillbook::sample
