#include "core/records/RecordsJSON.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

ArchiveConversation emptyConversation() {
    ArchiveConversation conversation;
    conversation.id = SourceID{"chat-1"};
    conversation.guid = "chat;-;ada";
    conversation.title = "Ada Quill";
    conversation.generatedAt = Date{736'259'696};
    conversation.sourceSystemVersion = "System 12";
    return conversation;
}

ArchiveMessage plainMessage() {
    ArchiveMessage message;
    message.id = SourceID{"message-1"};
    message.guid = "m1";
    message.date = Date{736'259'696};
    return message;
}

ArchiveAttachment wholeAttachment() {
    return ArchiveAttachment{.id = SourceID{"attachment-1"},
                             .guid = "a1",
                             .originalFilename = "~/Library/Messages/Attachments/b.jpg",
                             .displayName = "b.jpg",
                             .mimeType = "image/jpeg",
                             .uniformType = "public.jpeg",
                             .byteSize = 12'345'678'901,
                             .archivePath = "attachments/a/b.jpg",
                             .sha256 = "00ff",
                             .availability = AttachmentAvailability::available};
}

TEST(RecordsJSON, conversationWithoutMessagesIsExact) {
    EXPECT_EQ(jsonText(emptyConversation()), R"({
  "generatedAt" : "2024-05-01T12:34:56Z",
  "guid" : "chat;-;ada",
  "id" : "chat-1",
  "messages" : [],
  "participants" : [],
  "schemaVersion" : 1,
  "sourceMessageCount" : 0,
  "sourceSystemVersion" : "System 12",
  "title" : "Ada Quill",
  "warnings" : []
})");
}

TEST(RecordsJSON, conversationWithoutMessagesComesBackEqual) {
    EXPECT_EQ(recordFromJSON<ArchiveConversation>(jsonText(emptyConversation())), emptyConversation());
}

TEST(RecordsJSON, wholeMessageIsExact) {
    ArchiveMessage message = plainMessage();
    message.senderID = "participant-ada@rivertown.example";
    message.isFromMe = false;
    message.service = "iMessage";
    message.text = "Hello \"you\"";
    message.subject = "Greeting";
    message.replyToGUID = "m0";
    message.editedAt = Date{736'259'697};
    message.retractedAt = Date{736'259'698};
    message.reactions = {ArchiveReaction{"reaction-2", "me", ReactionKind::loved, true, Date{736'259'699}}};
    message.attachments = {wholeAttachment()};
    message.payloadState = MessagePayloadState::partiallyDecoded;
    EXPECT_EQ(jsonText(message), R"({
  "attachments" : [
    {
      "archivePath" : "attachments/a/b.jpg",
      "availability" : "available",
      "byteSize" : 12345678901,
      "displayName" : "b.jpg",
      "guid" : "a1",
      "id" : "attachment-1",
      "mimeType" : "image/jpeg",
      "originalFilename" : "~/Library/Messages/Attachments/b.jpg",
      "sha256" : "00ff",
      "uniformType" : "public.jpeg"
    }
  ],
  "date" : "2024-05-01T12:34:56Z",
  "editedAt" : "2024-05-01T12:34:57Z",
  "guid" : "m1",
  "id" : "message-1",
  "isFromMe" : false,
  "payloadState" : "partiallyDecoded",
  "reactions" : [
    {
      "date" : "2024-05-01T12:34:59Z",
      "id" : "reaction-2",
      "isRemoved" : true,
      "kind" : "loved",
      "senderID" : "me"
    }
  ],
  "replyToGUID" : "m0",
  "retractedAt" : "2024-05-01T12:34:58Z",
  "senderID" : "participant-ada@rivertown.example",
  "service" : "iMessage",
  "subject" : "Greeting",
  "text" : "Hello \"you\""
})");
}

TEST(RecordsJSON, messageWithoutTextLeavesTheKeyOut) {
    EXPECT_EQ(
        jsonText(plainMessage(), JSONForm::compact),
        R"({"attachments":[],"date":"2024-05-01T12:34:56Z","guid":"m1","id":"message-1","isFromMe":false,)"
        R"("payloadState":"decoded","reactions":[]})");
}

TEST(RecordsJSON, emptyTextIsNotAnAbsentOne) {
    ArchiveMessage message = plainMessage();
    message.text = "";
    EXPECT_EQ(recordFromJSON<ArchiveMessage>(jsonText(message)).text, "");
    EXPECT_EQ(recordFromJSON<ArchiveMessage>(jsonText(plainMessage())).text, std::nullopt);
}

TEST(RecordsJSON, participantWithAPictureIsExact) {
    const ArchiveParticipant participant{.id = "participant-ada",
                                         .address = "ada@rivertown.example",
                                         .displayName = "Ada Quill",
                                         .isMe = false,
                                         .avatarData = Data{0xFF, 0xD8, 0xFF},
                                         .avatarMimeType = "image/jpeg",
                                         .avatarPath = "assets/avatars/ada.jpg"};
    EXPECT_EQ(
        jsonText(participant, JSONForm::compact),
        R"({"address":"ada@rivertown.example","avatarData":"/9j/","avatarMimeType":"image/jpeg",)"
        R"("avatarPath":"assets/avatars/ada.jpg","displayName":"Ada Quill","id":"participant-ada","isMe":false})");
}

TEST(RecordsJSON, summaryIsExact) {
    ConversationSummary summary;
    summary.id = SourceID{"chat-1"};
    summary.guid = "g";
    summary.title = "Ada Quill";
    summary.participantAddresses = {"+14155550123", "ada@rivertown.example"};
    summary.lastMessageDate = Date{736'259'696};
    summary.messageCount = 3;
    EXPECT_EQ(
        jsonText(summary, JSONForm::compact),
        R"({"attachmentCount":0,"guid":"g","id":"chat-1","lastMessageDate":"2024-05-01T12:34:56Z","messageCount":3,)"
        R"("participantAddresses":["+14155550123","ada@rivertown.example"],"title":"Ada Quill"})");
}

TEST(RecordsJSON, optionsAreExact) {
    EXPECT_EQ(jsonText(ExportOptions{true, false, true}, JSONForm::compact),
              R"({"includeCSV":true,"includeJSON":true,"includeMarkdown":false})");
}

TEST(RecordsJSON, warningIsExact) {
    EXPECT_EQ(jsonText(ArchiveWarning{"w", "code", "Text.", SourceID{"7"}}, JSONForm::compact),
              R"({"code":"code","id":"w","sourceID":"7","summary":"Text."})");
    EXPECT_EQ(jsonText(ArchiveWarning{"w", "code", "Text.", {}}, JSONForm::compact),
              R"({"code":"code","id":"w","summary":"Text."})");
}

TEST(RecordsJSON, identifiersAndWordsAreBareTexts) {
    EXPECT_EQ(jsonText(SourceID{"chat-1"}), "\"chat-1\"");
    EXPECT_EQ(jsonText(ExportStage::copyingAttachments), "\"copyingAttachments\"");
    EXPECT_EQ(jsonText(ReactionKind::laughed), "\"laughed\"");
    EXPECT_EQ(jsonText(MessagePayloadState::unsupported), "\"unsupported\"");
    EXPECT_EQ(jsonText(AttachmentAvailability::missing), "\"missing\"");
}

TEST(RecordsJSON, fractionOfASecondIsLost) {
    ArchiveMessage message = plainMessage();
    message.date = Date{736'259'696.75};
    message.editedAt = Date{-0.25};
    const auto read = recordFromJSON<ArchiveMessage>(jsonText(message));
    EXPECT_EQ(read.date, Date{736'259'696});
    EXPECT_EQ(read.editedAt, Date{-1});
}

TEST(RecordsJSON, identifierThatIsNoTextFails) {
    for (const char* json : {"7", "{}", "{\"rawValue\":\"7\"}", "[]", "null", "true"}) {
        EXPECT_THROW(recordFromJSON<SourceID>(json), JSONDecodingError) << json;
    }
}

TEST(RecordsJSON, recordWhoseIdentifierIsNoTextFails) {
    for (const char* id : {"7", "{\"rawValue\":\"7\"}"}) {
        const std::string json =
            "{\"code\":\"c\",\"id\":\"w\",\"summary\":\"s\",\"sourceID\":" + std::string(id) + "}";
        EXPECT_THROW(recordFromJSON<ArchiveWarning>(json), JSONDecodingError) << id;
    }
}

TEST(RecordsJSON, wordInOtherLetterCaseFails) {
    EXPECT_THROW(recordFromJSON<AttachmentAvailability>("\"Missing\""), JSONDecodingError);
    EXPECT_THROW(recordFromJSON<ReactionKind>("\"Loved\""), JSONDecodingError);
    EXPECT_THROW(recordFromJSON<MessagePayloadState>("\"DECODED\""), JSONDecodingError);
    EXPECT_THROW(recordFromJSON<ExportStage>("\"copyingattachments\""), JSONDecodingError);
}

TEST(RecordsJSON, wordThatIsNoTextFails) {
    EXPECT_THROW(recordFromJSON<ReactionKind>("0"), JSONDecodingError);
    EXPECT_THROW(recordFromJSON<ReactionKind>("null"), JSONDecodingError);
}

TEST(RecordsJSON, oneBadWordDeepInsideFailsTheWhole) {
    ArchiveConversation conversation = emptyConversation();
    conversation.messages = {plainMessage()};
    conversation.messages[0].attachments = {wholeAttachment()};
    std::string json = jsonText(conversation);
    json.replace(json.find("\"available\""), 11, "\"Available\"");
    EXPECT_THROW(recordFromJSON<ArchiveConversation>(json), JSONDecodingError);
}

TEST(RecordsJSON, nullOptionalIsAbsent) {
    const auto warning =
        recordFromJSON<ArchiveWarning>(R"({"id":"w","code":"c","summary":"s","sourceID":null})");
    EXPECT_EQ(warning.sourceID, std::nullopt);
}

TEST(RecordsJSON, unknownKeysArePassedOver) {
    const auto warning =
        recordFromJSON<ArchiveWarning>(R"({"id":"w","later":[{}],"code":"c","summary":"s"})");
    EXPECT_EQ(warning, (ArchiveWarning{"w", "c", "s", {}}));
}

TEST(RecordsJSON, keysMayComeInAnyOrder) {
    EXPECT_EQ(
        recordFromJSON<ExportOptions>(R"({"includeMarkdown":false,"includeCSV":true,"includeJSON":false})"),
        (ExportOptions{false, false, true}));
}

struct RequiredCase {
    const char* name;
    std::string json;
    std::vector<std::string> optionals;
    bool (*isRead)(const std::string& json);
};

template <typename Record>
bool isReadAs(const std::string& json) {
    try {
        recordFromJSON<Record>(json);
        return true;
    } catch (const JSONDecodingError&) {
        return false;
    }
}

template <typename Record>
RequiredCase requiredCase(const char* name, const Record& whole, std::vector<std::string> optionals) {
    return {name, jsonText(whole, JSONForm::compact), std::move(optionals), isReadAs<Record>};
}

ArchiveMessage wholeMessage() {
    ArchiveMessage message = plainMessage();
    message.senderID = message.service = message.text = message.subject = message.replyToGUID = "x";
    message.editedAt = message.retractedAt = Date{1};
    return message;
}

class RequiredKeys : public testing::TestWithParam<RequiredCase> {};

/// The members of a compact JSON object without nested ones, each as it stands.
std::vector<std::string> membersOf(const std::string& object) {
    std::vector<std::string> members;
    const std::string body = object.substr(1, object.size() - 2);
    for (std::size_t start = 0; start < body.size();) {
        std::size_t end = body.find(",\"", start);
        if (end == std::string::npos) end = body.size();
        members.push_back(body.substr(start, end - start));
        start = end + 1;
    }
    return members;
}

std::string objectOf(const std::vector<std::string>& members) {
    std::string object;
    for (const std::string& member : members)
        object += (object.empty() ? "{" : ",") + member;
    return object.empty() ? "{}" : object + "}";
}

TEST_P(RequiredKeys, areThoseThatAreNotOptional) {
    const std::vector<std::string> members = membersOf(GetParam().json);
    ASSERT_TRUE(GetParam().isRead(objectOf(members)));
    for (std::size_t left = 0; left < members.size(); ++left) {
        const std::string key = members[left].substr(1, members[left].find('"', 1) - 1);
        const auto& optionals = GetParam().optionals;
        const bool isOptional = std::find(optionals.begin(), optionals.end(), key) != optionals.end();
        std::vector<std::string> rest = members;
        rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(left));
        EXPECT_EQ(GetParam().isRead(objectOf(rest)), isOptional) << key << " is left out";
        rest.push_back('"' + key + "\":null");
        EXPECT_EQ(GetParam().isRead(objectOf(rest)), isOptional) << key << " is null";
        rest.back() = '"' + key + "\":{}";
        EXPECT_FALSE(GetParam().isRead(objectOf(rest))) << key << " is an object";
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, RequiredKeys,
    testing::Values(
        requiredCase("options", ExportOptions(), {}),
        requiredCase("warning", ArchiveWarning{"w", "c", "s", SourceID{"7"}}, {"sourceID"}),
        requiredCase("summary",
                     ConversationSummary{
                         SourceID{"1"}, "g", "t", {}, "m", Date{1}, Date{0}, 2, 3, Data{1}, "image/png"},
                     {"lastMessage", "lastMessageDate", "firstMessageDate", "avatarData", "avatarMimeType"}),
        requiredCase("reaction", ArchiveReaction{"r", "me", ReactionKind::liked, true, Date{1}},
                     {"senderID", "date"}),
        requiredCase("attachment", wholeAttachment(),
                     {"guid", "originalFilename", "mimeType", "uniformType", "byteSize", "archivePath",
                      "sha256"}),
        requiredCase("participant",
                     ArchiveParticipant{"p", "a", "d", true, Data{1}, "image/png", "assets/avatars/a.png"},
                     {"displayName", "avatarData", "avatarMimeType", "avatarPath"}),
        requiredCase("message", wholeMessage(),
                     {"senderID", "service", "text", "subject", "replyToGUID", "editedAt", "retractedAt"}),
        requiredCase("conversation", emptyConversation(), {"service"})),
    [](const auto& test) { return std::string(test.param.name); });

TEST(RecordsJSON, fractionalCountFails) {
    std::string json = jsonText(emptyConversation());
    json.replace(json.find("\"sourceMessageCount\" : 0"), 24, "\"sourceMessageCount\" : 0.5");
    EXPECT_THROW(recordFromJSON<ArchiveConversation>(json), JSONDecodingError);
}

TEST(RecordsJSON, textThatIsNoObjectFails) {
    for (const char* json : {"", "[]", "7", "\"x\"", "null"}) {
        EXPECT_THROW(recordFromJSON<ArchiveConversation>(json), JSONDecodingError) << json;
    }
}

} // namespace
} // namespace quillbook
