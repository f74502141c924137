#include "store/RepositoryError.h"
#include "tests/store/RepositoryFakes.h"

#include <algorithm>

namespace quillbook {
namespace {

using test::MessageRow;

class ConversationSearch : public test::RepositoryTest {
protected:
    std::vector<ConversationSummary> search(const std::string& query) {
        return repository().searchConversations(query, {});
    }
    std::vector<std::string> titles(const std::string& query) {
        std::vector<std::string> titles;
        for (const auto& summary : search(query))
            titles.push_back(summary.title);
        return titles;
    }
    /// A named chat with one message.
    std::int64_t addNamedChat(const std::string& name, const std::string& text, std::int64_t date = 1'000) {
        const auto chat = database.addChat("guid-" + name, name, "chat-id");
        database.addMessage(chat, {.guid = name + "-1", .text = text, .date = date});
        return chat;
    }
};

using Titles = std::vector<std::string>;

TEST_F(ConversationSearch, listsNewestFirstAndChatsWithoutMessagesLast) {
    database.addChat("empty", "Empty", std::nullopt);
    addNamedChat("Old", "a", 100);
    addNamedChat("New", "b", 300);
    addNamedChat("Middle", "c", 200);
    EXPECT_EQ(titles(""), (Titles{"New", "Middle", "Old", "Empty"}));
}

TEST_F(ConversationSearch, breaksTiesByTheLargerRowID) {
    addNamedChat("First", "a", 100);
    addNamedChat("Second", "b", 100);
    EXPECT_EQ(titles(""), (Titles{"Second", "First"}));
}

TEST_F(ConversationSearch, chatWithoutMessagesHasNoDatesAndNoCount) {
    database.addChat("empty", "Empty", std::nullopt);
    const auto summary = search("").front();
    EXPECT_EQ(summary.firstMessageDate, std::nullopt);
    EXPECT_EQ(summary.lastMessageDate, std::nullopt);
    EXPECT_EQ(summary.messageCount, 0);
}

TEST_F(ConversationSearch, queryOfBlanksGivesTheWholeList) {
    addNamedChat("One", "a");
    addNamedChat("Two", "b");
    EXPECT_EQ(titles(" \t\n\xC2\xA0 ").size(), 2U);
}

TEST_F(ConversationSearch, namedCharactersOfPatternsMatchThemselvesOnly) {
    addNamedChat("Percent", "50% off");
    addNamedChat("Underscore", "snake_case");
    addNamedChat("Backslash", "C:\\path");
    addNamedChat("Plain", "nothing of the kind");
    EXPECT_EQ(titles("%"), Titles{"Percent"});
    EXPECT_EQ(titles("_"), Titles{"Underscore"});
    EXPECT_EQ(titles("\\"), Titles{"Backslash"});
}

TEST_F(ConversationSearch, quotesInAQueryDoNoHarm) {
    addNamedChat("Quoted", "it's \"so\"");
    EXPECT_EQ(titles("it's \""), Titles{"Quoted"});
    EXPECT_TRUE(titles("'; DROP TABLE chat; --").empty());
}

TEST_F(ConversationSearch, messageTextFoldsOnlyASCIILetters) {
    addNamedChat("Chat", "HELLO ÄRGER");
    EXPECT_EQ(titles("hello"), Titles{"Chat"});
    EXPECT_TRUE(titles("ärger").empty());
    EXPECT_EQ(titles("ÄRGER"), Titles{"Chat"});
}

TEST_F(ConversationSearch, titleFoldsOtherLettersToo) {
    addNamedChat("Ärger im Büro", "x");
    EXPECT_EQ(titles("ärger IM BÜRO"), Titles{"Ärger im Büro"});
}

TEST_F(ConversationSearch, contactNamesAreFoundThroughTheTitle) {
    addDirectChat();
    contacts->identities["+15550100"] = {.displayName = "Zoë Lindqvist"};
    EXPECT_EQ(titles("lindQVIST"), Titles{"Zoë Lindqvist"});
}

TEST_F(ConversationSearch, addressesAreFound) {
    addDirectChat();
    EXPECT_EQ(titles("5550100").size(), 1U);
}

TEST_F(ConversationSearch, textInsideTypedArchivesIsNotSearched) {
    const auto chat = addNamedChat("Chat", "visible");
    database.addMessage(
        chat, {.guid = "g", .attributedBody = std::vector<std::uint8_t>{'h', 'i', 'd', 'd', 'e', 'n'}});
    EXPECT_TRUE(titles("hidden").empty());
}

TEST_F(ConversationSearch, resultsKeepTheOrderOfTheList) {
    addNamedChat("A word", "x", 100);
    addNamedChat("B", "word", 300);
    addNamedChat("C word", "x", 200);
    EXPECT_EQ(titles("word"), (Titles{"B", "C word", "A word"}));
}

TEST_F(ConversationSearch, listIsASnapshotOfTheFirstCall) {
    addNamedChat("One", "a");
    search("");
    addNamedChat("Two", "b");
    EXPECT_EQ(titles(""), Titles{"One"});
    EXPECT_EQ(contacts->asked.size(), 1U);
}

TEST_F(ConversationSearch, chatWithoutHandlesAndNamesIsUntitled) {
    database.addChat("guid", std::nullopt, std::nullopt);
    const auto summary = search("").front();
    EXPECT_EQ(summary.title, "Untitled Conversation");
    EXPECT_TRUE(summary.participantAddresses.empty());
}

TEST_F(ConversationSearch, emptyDisplayNameCountsAsNone) {
    database.addChat("guid", "", "the identifier");
    EXPECT_EQ(titles(""), Titles{"the identifier"});
}

TEST_F(ConversationSearch, addressesMakeTheTitleOfLastResort) {
    const auto chat = database.addChat("guid", std::nullopt, "");
    database.join(chat, database.addHandle("a@example.org"));
    database.join(chat, database.addHandle("b@example.org"));
    EXPECT_EQ(titles(""), Titles{"a@example.org, b@example.org"});
}

TEST_F(ConversationSearch, pictureWithoutANameKeepsTheIdentifierAsTitle) {
    addDirectChat();
    contacts->identities["+15550100"] = {.avatarData = Data{1, 2}, .avatarMimeType = "image/png"};
    const auto summary = search("").front();
    EXPECT_EQ(summary.title, "+15550100");
    EXPECT_EQ(summary.avatarData, (Data{1, 2}));
    EXPECT_EQ(summary.avatarMimeType, "image/png");
}

TEST_F(ConversationSearch, groupsTakeNothingFromContacts) {
    const auto chat = database.addChat("guid", std::nullopt, "group-7");
    database.join(chat, database.addHandle("+15550100"));
    database.join(chat, database.addHandle("+15550101"));
    contacts->identities["+15550100"] = {.displayName = "Zoë", .avatarData = Data{1}};
    const auto summary = search("").front();
    EXPECT_EQ(summary.title, "group-7");
    EXPECT_EQ(summary.avatarData, std::nullopt);
    EXPECT_EQ(summary.participantAddresses, (Titles{"+15550100", "+15550101"}));
}

TEST_F(ConversationSearch, addressesStandInTheOrderOfTheHandles) {
    const auto chat = database.addChat("guid", "Group", std::nullopt);
    const auto first = database.addHandle("z@example.org");
    const auto second = database.addHandle("a@example.org");
    database.join(chat, second);
    database.join(chat, first);
    EXPECT_EQ(search("").front().participantAddresses, (Titles{"z@example.org", "a@example.org"}));
}

TEST_F(ConversationSearch, countsLeaveReactionsOutAndAttachmentsOfReactionsIn) {
    const auto chat = database.addChat("guid", "Chat", std::nullopt);
    const auto message = database.addMessage(chat, {.guid = "m", .text = "hi", .date = 100});
    const auto reaction = database.addMessage(
        chat,
        {.guid = "r", .text = "Loved “hi”", .date = 900, .associatedGUID = "m", .associatedType = 2000});
    database.addMessage(chat, {.guid = "n", .text = "no type", .date = 200, .associatedType = std::nullopt});
    database.addAttachment(message, {.guid = "a"});
    database.addAttachment(reaction, {.guid = "b"});
    const auto summary = search("").front();
    EXPECT_EQ(summary.messageCount, 2);
    EXPECT_EQ(summary.attachmentCount, 2);
    EXPECT_EQ(summary.firstMessageDate, Date{100});
    EXPECT_EQ(summary.lastMessageDate, Date{200});
    EXPECT_EQ(summary.lastMessage, "hi") << "a row without a type is not looked at for the preview";
}

TEST_F(ConversationSearch, newestMessageInAnArchiveGivesNoPreview) {
    const auto chat = addNamedChat("Chat", "older", 100);
    database.addMessage(chat, {.guid = "g", .attributedBody = std::vector<std::uint8_t>{'x'}, .date = 200});
    EXPECT_EQ(search("").front().lastMessage, std::nullopt);
}

TEST_F(ConversationSearch, missingGUIDIsMadeFromTheRowID) {
    database.addChat(std::nullopt, "Chat", std::nullopt);
    EXPECT_EQ(search("").front().guid, "chat-1");
    EXPECT_EQ(search("").front().id, SourceID{"1"});
}

TEST_F(ConversationSearch, contactsAreAskedOnceForEachAddress) {
    const auto handle = database.addHandle("+15550100");
    database.join(database.addChat("a", "A", std::nullopt), handle);
    database.join(database.addChat("b", "B", std::nullopt), handle);
    search("");
    search("x");
    ASSERT_EQ(contacts->asked.size(), 1U);
    EXPECT_EQ(contacts->asked.front(), Titles{"+15550100"});
}

TEST_F(ConversationSearch, anotherCallCanRunWhileContactsAreAsked) {
    const auto chat = addDirectChat();
    database.addMessage(chat, {.guid = "m", .text = "hi"});
    contacts->whileResolving = [&] {
        contacts->whileResolving = nullptr;
        EXPECT_EQ(load(chat).messages.size(), 1U);
    };
    EXPECT_EQ(search("").size(), 1U);
}

TEST_F(ConversationSearch, failureLeavesNoCacheBehind) {
    addNamedChat("One", "a");
    database.run("ALTER TABLE chat_handle_join RENAME TO elsewhere");
    EXPECT_THROW(search(""), SQLiteError);
    database.run("ALTER TABLE elsewhere RENAME TO chat_handle_join");
    EXPECT_EQ(titles(""), Titles{"One"});
}

TEST_F(ConversationSearch, chatWithoutARowIDFailsTheListAndLeavesNoCache) {
    addNamedChat("One", "a");
    database.run(
        "ALTER TABLE chat RENAME TO stored; CREATE VIEW chat AS SELECT 'row' AS ROWID, guid, display_name, "
        "chat_identifier, service_name FROM stored");
    try {
        search("");
        FAIL() << "nothing thrown";
    } catch (const RepositoryError& error) {
        EXPECT_EQ(error.reason, RepositoryError::Reason::missingRequiredColumn);
        EXPECT_EQ(error.subject, "chat_id");
    }
    database.run("DROP VIEW chat; ALTER TABLE stored RENAME TO chat");
    EXPECT_EQ(titles(""), Titles{"One"});
}

TEST_F(ConversationSearch, addressOfNoChatBelongsToNone) {
    addNamedChat("One", "a");
    database.addHandle("+15550100");
    database.run("INSERT INTO chat_handle_join VALUES (NULL, 1)");
    EXPECT_TRUE(search("").front().participantAddresses.empty());
}

TEST_F(ConversationSearch, missingTableFailsInSQLitesWords) {
    database.run("DROP TABLE message_attachment_join");
    try {
        search("");
        FAIL() << "nothing thrown";
    } catch (const SQLiteError& error) {
        EXPECT_EQ(error.message, "no such table: message_attachment_join");
    }
}

TEST_F(ConversationSearch, oddTypesReadAsMissing) {
    addNamedChat("Chat", "a");
    database.run("UPDATE chat SET display_name = x'00', chat_identifier = 7.5, guid = 3");
    database.run("UPDATE message SET date = 1e300");
    const auto summary = search("").front();
    EXPECT_EQ(summary.title, "7.5") << "the column's affinity makes a text of it";
    EXPECT_EQ(summary.guid, "3");
    EXPECT_EQ(summary.lastMessageDate, std::nullopt);
}

} // namespace
} // namespace quillbook
