#include "core/records/Cancellation.h"
#include "platform/SystemVersion.h"
#include "store/RepositoryError.h"
#include "tests/store/RepositoryFakes.h"
#include "tests/support/TypedStreamBuilder.h"

#include <chrono>
#include <thread>

namespace quillbook {
namespace {

using test::AttachmentRow;
using test::MessageRow;
using test::MessagesDatabase;

class ConversationLoad : public test::RepositoryTest {
protected:
    RepositoryError::Reason reasonOf(const std::string& id) {
        try {
            repository().loadConversation(SourceID{id}, {});
        } catch (const RepositoryError& error) {
            return error.reason;
        }
        ADD_FAILURE() << "no RepositoryError for " << id;
        return {};
    }
    /// Loads a direct chat with this one message and gives the message.
    ArchiveMessage loaded(const MessageRow& row) {
        const auto chat = addDirectChat();
        database.addMessage(chat, row);
        return load(chat).messages.at(0);
    }
};

TEST_F(ConversationLoad, refusesIDsThatAreNoIntegers) {
    for (const char* id : {"", "+", "-", "1x", " 1", "1 ", "0x1", "+-1", "9223372036854775808", "1.0", "١"}) {
        EXPECT_EQ(reasonOf(id), RepositoryError::Reason::invalidConversationID) << id;
    }
}

TEST_F(ConversationLoad, acceptsSignsAndLeadingZeros) {
    addDirectChat();
    for (const char* id : {"1", "+1", "01"}) {
        EXPECT_EQ(repository().loadConversation(SourceID{id}, {}).id, SourceID{id});
    }
    EXPECT_EQ(reasonOf("-1"), RepositoryError::Reason::conversationNotFound);
}

TEST_F(ConversationLoad, absentChatIsNotFoundAndRolledBack) {
    EXPECT_EQ(reasonOf("77"), RepositoryError::Reason::conversationNotFound);
    EXPECT_EQ(load(addDirectChat()).messages.size(), 0U) << "a transaction left open would fail the next";
}

TEST_F(ConversationLoad, errorsHaveWordsForTheUser) {
    using Reason = RepositoryError::Reason;
    EXPECT_EQ(RepositoryError(Reason::invalidConversationID, "x").description(),
              "The selected conversation identifier is invalid.");
    EXPECT_EQ(RepositoryError(Reason::conversationNotFound, "x").description(),
              "The selected conversation no longer exists.");
    EXPECT_EQ(RepositoryError(Reason::missingRequiredColumn, "chat_id").description(),
              "The Messages database did not return required field chat_id.");
}

TEST_F(ConversationLoad, recordsWhatTheChatIs) {
    const auto chat = database.addChat("iMessage;+;chat7", "Book club", "chat7");
    const Date before = Date::now();
    const ArchiveConversation conversation = load(chat);
    EXPECT_EQ(conversation.schemaVersion, 1);
    EXPECT_EQ(conversation.guid, "iMessage;+;chat7");
    EXPECT_EQ(conversation.title, "Book club");
    EXPECT_EQ(conversation.service, "iMessage");
    EXPECT_EQ(conversation.sourceSystemVersion, systemVersion());
    EXPECT_GE(conversation.generatedAt, before);
    EXPECT_TRUE(conversation.messages.empty());
}

TEST_F(ConversationLoad, missingGUIDsAreMadeFromRowIDs) {
    const auto chat = database.addChat(std::nullopt, std::nullopt, "x", std::nullopt);
    database.addMessage(chat, {.text = "hi"});
    const ArchiveConversation conversation = load(chat);
    EXPECT_EQ(conversation.guid, "chat-1");
    EXPECT_EQ(conversation.messages[0].guid, "message-1");
    EXPECT_EQ(conversation.messages[0].id, SourceID{"1"});
    EXPECT_EQ(conversation.service, std::nullopt);
}

TEST_F(ConversationLoad, keepsEveryFieldOfAMessage) {
    const ArchiveMessage message = loaded({.guid = "g",
                                           .text = "words",
                                           .handleID = 1,
                                           .date = 700'000'000'500'000'000,
                                           .service = "SMS",
                                           .subject = "",
                                           .threadOriginatorGUID = "p:0/other",
                                           .dateEdited = 700'000'001'000'000'000,
                                           .dateRetracted = 700'000'002'000'000'000});
    EXPECT_EQ(message.guid, "g");
    EXPECT_EQ(message.date, Date{700'000'000.5});
    EXPECT_EQ(message.senderID, "participant-+15550100");
    EXPECT_FALSE(message.isFromMe);
    EXPECT_EQ(message.service, "SMS");
    EXPECT_EQ(message.subject, "") << "empty subjects are kept";
    EXPECT_EQ(message.replyToGUID, "p:0/other") << "kept as it stands";
    EXPECT_EQ(message.editedAt, Date{700'000'001});
    EXPECT_EQ(message.retractedAt, Date{700'000'002});
    EXPECT_EQ(message.text, "words") << "a retracted message keeps what it has";
    EXPECT_EQ(message.payloadState, MessagePayloadState::decoded);
}

TEST_F(ConversationLoad, emptyMessageHasNoTextAndNoWarning) {
    const auto chat = addDirectChat();
    database.addMessage(chat, {.guid = "g", .text = ""});
    const ArchiveConversation conversation = load(chat);
    EXPECT_EQ(conversation.messages[0].text, std::nullopt);
    EXPECT_EQ(conversation.messages[0].payloadState, MessagePayloadState::decoded);
    EXPECT_TRUE(conversation.warnings.empty());
}

TEST_F(ConversationLoad, textComesFromTheArchiveWhereTheColumnIsEmpty) {
    const auto archive = test::archivedBody("from the archive");
    EXPECT_EQ(loaded({.guid = "g", .attributedBody = archive}).text, "from the archive");
}

TEST_F(ConversationLoad, textColumnWinsOverTheArchive) {
    const auto archive = test::archivedBody("from the archive");
    EXPECT_EQ(loaded({.guid = "g", .text = "from the column", .attributedBody = archive}).text,
              "from the column");
}

TEST_F(ConversationLoad, unreadableBodyKeepsTheMessageAndWarns) {
    const auto chat = addDirectChat();
    database.addMessage(chat, {.guid = "g", .attributedBody = std::vector<std::uint8_t>{0xFF, 0x00, 0x01}});
    const ArchiveConversation conversation = load(chat);
    ASSERT_EQ(conversation.messages.size(), 1U);
    EXPECT_EQ(conversation.messages[0].text, std::nullopt);
    EXPECT_EQ(conversation.messages[0].payloadState, MessagePayloadState::unsupported);
    ASSERT_EQ(conversation.warnings.size(), 1U);
    EXPECT_EQ(conversation.warnings[0],
              (ArchiveWarning{"unsupported_payload-1", "unsupported_payload",
                              "A message payload could not be fully decoded.", SourceID{"1"}}));
}

TEST_F(ConversationLoad, oldDatabaseWithoutTheOptionalColumnsLoadsWhole) {
    MessagesDatabase old(folder / "old/chat.db", MessagesDatabase::Age::withoutOptionalColumns);
    const auto chat = old.addChat("g", "Old", std::nullopt);
    old.addMessage(chat, {.guid = "a", .text = "one"});
    old.addMessage(chat, {.guid = "b", .text = "two"});
    MessagesRepository reader(old.file(), files, contacts);
    const ArchiveConversation conversation = reader.loadConversation(SourceID{"1"}, {});
    ASSERT_EQ(conversation.messages.size(), 2U);
    EXPECT_EQ(conversation.messages[0].editedAt, std::nullopt);
    EXPECT_EQ(conversation.messages[0].retractedAt, std::nullopt);
    EXPECT_EQ(conversation.messages[0].replyToGUID, std::nullopt);
}

TEST_F(ConversationLoad, zeroIsNoEditButADate) {
    const ArchiveMessage message =
        loaded({.guid = "g", .text = "x", .date = 0, .dateEdited = 0, .dateRetracted = 0});
    EXPECT_EQ(message.editedAt, std::nullopt);
    EXPECT_EQ(message.retractedAt, std::nullopt);
    EXPECT_EQ(message.date, Date{0});
}

TEST_F(ConversationLoad, messageWithoutADateStandsAtTheReferenceDate) {
    EXPECT_EQ(loaded({.guid = "g", .text = "x", .date = std::nullopt}).date, Date{0});
}

TEST_F(ConversationLoad, secondsAndNanosecondsPartAtTenToTheTwelfth) {
    const auto chat = addDirectChat();
    database.addMessage(chat, {.guid = "s", .text = "x", .date = 999'999'999'999});
    database.addMessage(chat, {.guid = "n", .text = "x", .date = 1'000'000'000'000});
    const auto messages = load(chat).messages;
    EXPECT_EQ(messages[0].date, Date{999'999'999'999.0});
    EXPECT_EQ(messages[1].date, Date{1'000.0});
}

TEST_F(ConversationLoad, dateThatNoIntegerHoldsStopsNothing) {
    const auto chat = addDirectChat();
    database.addMessage(chat, {.guid = "g", .text = "still here"});
    database.run(
        "UPDATE message SET date = 1e300, date_edited = -1e300, handle_id = 9e99, is_from_me = 1e40");
    const auto messages = load(chat).messages;
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].text, "still here");
    EXPECT_EQ(messages[0].date, Date{0});
    EXPECT_EQ(messages[0].editedAt, std::nullopt);
}

TEST_F(ConversationLoad, messagesStandByDateThenRowID) {
    const auto chat = addDirectChat();
    for (const auto& [guid, date] : {std::pair{"c", 30}, {"a", 10}, {"b2", 20}, {"b3", 20}}) {
        database.addMessage(chat, {.guid = guid, .text = "x", .date = date});
    }
    std::vector<std::string> order;
    for (const auto& message : load(chat).messages)
        order.push_back(message.guid);
    EXPECT_EQ(order, (std::vector<std::string>{"a", "b2", "b3", "c"}));
}

TEST_F(ConversationLoad, stickersAndOddTypesBelow2000AreMessages) {
    const auto chat = addDirectChat();
    database.addMessage(chat, {.guid = "a", .text = "x", .associatedType = 1000});
    database.addMessage(chat, {.guid = "b", .text = "x", .associatedType = std::nullopt});
    EXPECT_EQ(load(chat).messages.size(), 2U);
}

TEST_F(ConversationLoad, reactionsReachTheirMessageByEveryFormOfItsGUID) {
    const auto chat = addDirectChat();
    database.addMessage(chat, {.guid = "GUID", .text = "x", .date = 1});
    int date = 10;
    for (const char* associated : {"GUID", "bp:GUID", "p:1/GUID"}) {
        database.addMessage(
            chat, {.guid = associated, .date = ++date, .associatedGUID = associated, .associatedType = 2001});
    }
    const ArchiveConversation conversation = load(chat);
    ASSERT_EQ(conversation.messages.size(), 1U);
    EXPECT_EQ(conversation.messages[0].reactions.size(), 3U);
    EXPECT_EQ(conversation.sourceMessageCount, 4);
}

TEST_F(ConversationLoad, reactionKeepsItsFields) {
    const auto chat = addDirectChat();
    database.addMessage(chat, {.guid = "GUID", .text = "x", .date = 1});
    database.addMessage(
        chat, {.guid = "r", .handleID = 1, .date = 5, .associatedGUID = "p:0/GUID", .associatedType = 3000});
    const auto reactions = load(chat).messages[0].reactions;
    ASSERT_EQ(reactions.size(), 1U);
    EXPECT_EQ(reactions[0],
              (ArchiveReaction{"reaction-2", "participant-+15550100", ReactionKind::loved, true, Date{5}}));
}

TEST_F(ConversationLoad, reactionWithoutADateHasNone) {
    const auto chat = addDirectChat();
    database.addMessage(chat, {.guid = "GUID", .text = "x"});
    database.addMessage(
        chat, {.guid = "r", .date = std::nullopt, .associatedGUID = "GUID", .associatedType = 2000});
    EXPECT_EQ(load(chat).messages[0].reactions[0].date, std::nullopt);
}

TEST_F(ConversationLoad, twoReactionsStayInDateOrder) {
    const auto chat = addDirectChat();
    database.addMessage(chat, {.guid = "GUID", .text = "x", .date = 1});
    database.addMessage(chat, {.guid = "late", .date = 9, .associatedGUID = "GUID", .associatedType = 2003});
    database.addMessage(chat, {.guid = "early", .date = 5, .associatedGUID = "GUID", .associatedType = 2000});
    const auto reactions = load(chat).messages[0].reactions;
    ASSERT_EQ(reactions.size(), 2U);
    EXPECT_EQ(reactions[0].kind, ReactionKind::loved);
    EXPECT_EQ(reactions[1].kind, ReactionKind::laughed);
}

TEST_F(ConversationLoad, reactionThatNamesNoTargetWarns) {
    const auto chat = addDirectChat();
    database.addMessage(chat, {.guid = "r", .associatedType = 2000});
    const ArchiveConversation conversation = load(chat);
    EXPECT_TRUE(conversation.messages.empty());
    ASSERT_EQ(conversation.warnings.size(), 1U);
    EXPECT_EQ(conversation.warnings[0],
              (ArchiveWarning{"unresolved_reaction-1", "unresolved_reaction",
                              "A reaction could not be matched to its message.", SourceID{"1"}}));
}

TEST_F(ConversationLoad, reactionToAnAbsentMessageIsDroppedWithoutWarning) {
    const auto chat = addDirectChat();
    database.addMessage(chat, {.guid = "r", .associatedGUID = "gone", .associatedType = 2000});
    const ArchiveConversation conversation = load(chat);
    EXPECT_TRUE(conversation.messages.empty());
    EXPECT_TRUE(conversation.warnings.empty());
    EXPECT_EQ(conversation.sourceMessageCount, 1);
}

TEST_F(ConversationLoad, senderWhoLeftTheGroupIsAppended) {
    const auto chat = addDirectChat();
    database.addHandle("+15550199");
    database.addMessage(chat, {.guid = "g", .text = "bye", .handleID = 2});
    const ArchiveConversation conversation = load(chat);
    ASSERT_EQ(conversation.participants.size(), 2U);
    EXPECT_EQ(conversation.participants[1].id, "participant-+15550199");
    EXPECT_EQ(conversation.messages[0].senderID, "participant-+15550199");
}

TEST_F(ConversationLoad, senderOfAReactionAloneIsAppendedToo) {
    const auto chat = addDirectChat();
    database.addHandle("+15550199");
    database.addMessage(chat, {.guid = "r", .handleID = 2, .associatedGUID = "gone", .associatedType = 2000});
    EXPECT_EQ(load(chat).participants.size(), 2U);
}

TEST_F(ConversationLoad, secondHandleOfOneAddressIsOneParticipant) {
    const auto chat = addDirectChat();
    database.addHandle("+15550100");
    database.addMessage(chat, {.guid = "g", .text = "sms", .handleID = 2});
    const ArchiveConversation conversation = load(chat);
    EXPECT_EQ(conversation.participants.size(), 1U);
    EXPECT_EQ(conversation.messages[0].senderID, "participant-+15550100");
}

TEST_F(ConversationLoad, equalHandlesOfTheChatStayTwoParticipants) {
    const auto chat = addDirectChat();
    database.join(chat, database.addHandle("+15550100"));
    contacts->identities["+15550100"] = {.displayName = "Zoë"};
    const ArchiveConversation conversation = load(chat);
    EXPECT_EQ(conversation.participants.size(), 2U);
    EXPECT_EQ(conversation.title, "+15550100") << "the chat no longer counts as one-to-one";
}

TEST_F(ConversationLoad, ownMessageIsFromMeWhateverItsHandle) {
    const ArchiveMessage message = loaded({.guid = "g", .text = "x", .handleID = 1, .isFromMe = 1});
    EXPECT_EQ(message.senderID, "me");
    EXPECT_TRUE(message.isFromMe);
}

TEST_F(ConversationLoad, messageThatDoesNotSayIsFromMe) {
    const ArchiveMessage message =
        loaded({.guid = "g", .text = "x", .handleID = 1, .isFromMe = std::nullopt});
    EXPECT_EQ(message.senderID, "me");
    EXPECT_TRUE(message.isFromMe);
}

TEST_F(ConversationLoad, unknownHandleHasNoSender) {
    EXPECT_EQ(loaded({.guid = "g", .text = "x", .handleID = 0}).senderID, std::nullopt);
}

TEST_F(ConversationLoad, handleWithoutAnAddressIsUnknown) {
    const auto chat = database.addChat("g", std::nullopt, "x");
    database.join(chat, database.addHandle(std::nullopt));
    const ArchiveConversation conversation = load(chat);
    EXPECT_EQ(conversation.participants.at(0).address, "Unknown");
    EXPECT_EQ(conversation.participants.at(0).id, "participant-Unknown");
}

TEST_F(ConversationLoad, chatWithoutHandlesTakesItsParticipantsFromTheSenders) {
    const auto chat = database.addChat("g", std::nullopt, "");
    database.addHandle("b@example.org");
    database.addMessage(chat, {.guid = "m", .text = "x", .handleID = 1});
    const ArchiveConversation conversation = load(chat);
    ASSERT_EQ(conversation.participants.size(), 1U);
    EXPECT_EQ(conversation.title, "b@example.org");
}

TEST_F(ConversationLoad, chatWithNeitherHandlesNorSendersIsTitledByItsIdentifier) {
    EXPECT_EQ(load(database.addChat("g", std::nullopt, "chat99")).title, "chat99");
    EXPECT_EQ(load(database.addChat("h", std::nullopt, std::nullopt)).title, "Untitled Conversation");
}

TEST_F(ConversationLoad, oneToOneChatIsTitledByItsContact) {
    const auto chat = addDirectChat();
    contacts->identities["+15550100"] = {
        .displayName = "Zoë", .avatarData = Data{1}, .avatarMimeType = "image/png"};
    const ArchiveConversation conversation = load(chat);
    EXPECT_EQ(conversation.title, "Zoë");
    EXPECT_EQ(conversation.participants[0].displayName, "Zoë");
    EXPECT_EQ(conversation.participants[0].avatarData, Data{1});
    EXPECT_EQ(conversation.participants[0].avatarMimeType, "image/png");
    EXPECT_FALSE(conversation.participants[0].isMe);
}

TEST_F(ConversationLoad, nameOfTheChatWinsOverTheContact) {
    const auto chat = database.addChat("g", "Named", "x");
    database.join(chat, database.addHandle("+15550100"));
    contacts->identities["+15550100"] = {.displayName = "Zoë"};
    EXPECT_EQ(load(chat).title, "Named");
}

TEST_F(ConversationLoad, attachmentsKeepTheirRecordsInRowOrder) {
    const auto chat = addDirectChat();
    const auto message = database.addMessage(chat, {.guid = "m", .text = "x"});
    database.addAttachment(message, {"guid", "~/Library/Messages/Attachments/a/b.jpg", "b.jpg", 12,
                                     "image/jpeg", "public.jpeg"});
    database.addAttachment(message, {.filename = "~/x/second.pdf"});
    database.addAttachment(message, {.transferName = ""});
    database.addAttachment(message, {});
    const auto attachments = load(chat).messages[0].attachments;
    ASSERT_EQ(attachments.size(), 4U);
    EXPECT_EQ(attachments[0],
              (ArchiveAttachment{SourceID{"1"}, "guid", "~/Library/Messages/Attachments/a/b.jpg", "b.jpg",
                                 "image/jpeg", "public.jpeg", 12, std::nullopt, std::nullopt,
                                 AttachmentAvailability::available}));
    EXPECT_EQ(attachments[1].displayName, "second.pdf");
    EXPECT_EQ(attachments[2].displayName, "") << "an empty name is a name";
    EXPECT_EQ(attachments[3].displayName, "Attachment");
    EXPECT_EQ(attachments[3].originalFilename, std::nullopt) << "a row without a path is kept";
}

TEST_F(ConversationLoad, attachmentsOfReactionsAreLeftBehind) {
    const auto chat = addDirectChat();
    database.addMessage(chat, {.guid = "m", .text = "x"});
    const auto reaction =
        database.addMessage(chat, {.guid = "r", .associatedGUID = "m", .associatedType = 2000});
    database.addAttachment(reaction, {.guid = "a"});
    EXPECT_TRUE(load(chat).messages[0].attachments.empty());
}

TEST_F(ConversationLoad, loadSeesWhatTheListDidNot) {
    const auto chat = addDirectChat();
    repository().searchConversations("", {});
    database.addMessage(chat, {.guid = "new", .text = "x"});
    EXPECT_EQ(load(chat).messages.size(), 1U);
}

TEST_F(ConversationLoad, missingTableFailsAndIsRolledBack) {
    const auto chat = addDirectChat();
    database.run("ALTER TABLE attachment RENAME TO elsewhere");
    EXPECT_THROW(load(chat), SQLiteError);
    database.run("ALTER TABLE elsewhere RENAME TO attachment");
    EXPECT_NO_THROW(load(chat));
}

TEST_F(ConversationLoad, messageRowWithoutARowIDFailsTheLoad) {
    // A view in the table's place is the one way to a row without an id.
    const auto chat = addDirectChat();
    database.addMessage(chat, {.guid = "m", .text = "x"});
    database.run("ALTER TABLE message RENAME TO stored;"
                 "CREATE VIEW message AS SELECT NULL AS ROWID, guid, text, attributedBody, handle_id, date, "
                 "is_from_me, "
                 "service, subject, associated_message_guid, associated_message_type FROM stored;"
                 "DROP TABLE chat_message_join; CREATE TABLE chat_message_join (chat_id, message_id);"
                 "CREATE VIEW joined AS SELECT 1");
    database.run(
        "DROP VIEW message; CREATE VIEW message AS SELECT CASE WHEN 1 THEN 'row' END AS ROWID, guid, text, "
        "attributedBody, handle_id, date, is_from_me, service, subject, associated_message_guid, "
        "associated_message_type FROM stored; INSERT INTO chat_message_join VALUES (1, 'row')");
    try {
        load(chat);
        FAIL() << "nothing thrown";
    } catch (const RepositoryError& error) {
        EXPECT_EQ(error.reason, RepositoryError::Reason::missingRequiredColumn);
        EXPECT_EQ(error.subject, "message_id");
    }
    EXPECT_THROW(load(chat), RepositoryError) << "a transaction left open would fail with another error";
}

TEST_F(ConversationLoad, attachmentRowWithoutARowIDKeepsItsRecord) {
    const auto chat = addDirectChat();
    const auto message = database.addMessage(chat, {.guid = "m", .text = "x"});
    database.addAttachment(message, {.guid = "a", .filename = "~/x/y.jpg"});
    database.run(
        "ALTER TABLE attachment RENAME TO stored; UPDATE message_attachment_join SET attachment_id = 'row';"
        "CREATE VIEW attachment AS SELECT CAST('row' AS TEXT) AS ROWID, guid, filename, transfer_name, "
        "total_bytes, mime_type, uti FROM stored");
    const auto attachments = load(chat).messages.at(0).attachments;
    ASSERT_EQ(attachments.size(), 1U);
    EXPECT_EQ(attachments[0].id, SourceID{"-1"});
    EXPECT_EQ(attachments[0].displayName, "y.jpg");
}

TEST_F(ConversationLoad, attachmentJoinedToNoNumberBelongsToNoMessage) {
    const auto chat = addDirectChat();
    const auto message = database.addMessage(chat, {.guid = "m", .text = "x"});
    database.addAttachment(message, {.guid = "a"});
    database.run("DROP TABLE chat_message_join; CREATE TABLE chat_message_join (chat_id, message_id);"
                 "INSERT INTO chat_message_join VALUES (1, 1), (1, 'row');"
                 "DROP TABLE message_attachment_join; CREATE TABLE message_attachment_join (message_id, "
                 "attachment_id);"
                 "INSERT INTO message_attachment_join VALUES ('row', 1)");
    EXPECT_TRUE(load(chat).messages.at(0).attachments.empty());
}

TEST_F(ConversationLoad, momentOfTheLoadIsTheOneBeforeContactsAreAsked) {
    const auto chat = addDirectChat();
    Date asked;
    contacts->whileResolving = [&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        asked = Date::now();
    };
    EXPECT_LT(load(chat).generatedAt, asked);
}

TEST_F(ConversationLoad, cancellationRollsBack) {
    const auto chat = addDirectChat();
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(repository().loadConversation(SourceID{"1"}, stop.get_token()), CancellationError);
    EXPECT_NO_THROW(load(chat));
}

} // namespace
} // namespace quillbook
