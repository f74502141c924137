#include "core/records/EnumWords.h"
#include "core/records/RecordsJSON.h"

namespace quillbook {
namespace {

template <typename Enumeration>
Enumeration readWord(const JSONValue& json) {
    const std::string text = json.text();
    const auto word = fromRawValue<Enumeration>(text);
    if (!word) throw JSONDecodingError("\"" + text + "\" is not a known word");
    return *word;
}

std::optional<std::string> optionalText(const JSONValue& json, std::string_view name) {
    const auto value = json.optional(name);
    return value ? std::optional(value->text()) : std::nullopt;
}

std::optional<Date> optionalDate(const JSONValue& json, std::string_view name) {
    const auto value = json.optional(name);
    return value ? std::optional(value->date()) : std::nullopt;
}

std::optional<Data> optionalData(const JSONValue& json, std::string_view name) {
    const auto value = json.optional(name);
    return value ? std::optional(value->data()) : std::nullopt;
}

std::string requiredText(const JSONValue& json, std::string_view name) {
    return json.required(name).text();
}

SourceID requiredID(const JSONValue& json) {
    return SourceID{requiredText(json, "id")};
}

} // namespace

template <>
ExportStage readJSON(const JSONValue& json) {
    return readWord<ExportStage>(json);
}

template <>
ReactionKind readJSON(const JSONValue& json) {
    return readWord<ReactionKind>(json);
}

template <>
MessagePayloadState readJSON(const JSONValue& json) {
    return readWord<MessagePayloadState>(json);
}

template <>
AttachmentAvailability readJSON(const JSONValue& json) {
    return readWord<AttachmentAvailability>(json);
}

template <>
SourceID readJSON(const JSONValue& json) {
    return SourceID{json.text()};
}

template <>
ExportOptions readJSON(const JSONValue& json) {
    return ExportOptions{
        .includeJSON = json.required("includeJSON").truth(),
        .includeMarkdown = json.required("includeMarkdown").truth(),
        .includeCSV = json.required("includeCSV").truth(),
    };
}

template <>
ArchiveWarning readJSON(const JSONValue& json) {
    const auto sourceID = optionalText(json, "sourceID");
    return ArchiveWarning{
        .id = requiredText(json, "id"),
        .code = requiredText(json, "code"),
        .summary = requiredText(json, "summary"),
        .sourceID = sourceID ? std::optional(SourceID{*sourceID}) : std::nullopt,
    };
}

template <>
ConversationSummary readJSON(const JSONValue& json) {
    std::vector<std::string> addresses;
    for (const JSONValue& address : json.required("participantAddresses").elements()) {
        addresses.push_back(address.text());
    }
    return ConversationSummary{
        .id = requiredID(json),
        .guid = requiredText(json, "guid"),
        .title = requiredText(json, "title"),
        .participantAddresses = std::move(addresses),
        .lastMessage = optionalText(json, "lastMessage"),
        .lastMessageDate = optionalDate(json, "lastMessageDate"),
        .firstMessageDate = optionalDate(json, "firstMessageDate"),
        .messageCount = json.required("messageCount").integer(),
        .attachmentCount = json.required("attachmentCount").integer(),
        .avatarData = optionalData(json, "avatarData"),
        .avatarMimeType = optionalText(json, "avatarMimeType"),
    };
}

template <>
ArchiveReaction readJSON(const JSONValue& json) {
    return ArchiveReaction{
        .id = requiredText(json, "id"),
        .senderID = optionalText(json, "senderID"),
        .kind = readWord<ReactionKind>(json.required("kind")),
        .isRemoved = json.required("isRemoved").truth(),
        .date = optionalDate(json, "date"),
    };
}

template <>
ArchiveAttachment readJSON(const JSONValue& json) {
    const auto byteSize = json.optional("byteSize");
    return ArchiveAttachment{
        .id = requiredID(json),
        .guid = optionalText(json, "guid"),
        .originalFilename = optionalText(json, "originalFilename"),
        .displayName = requiredText(json, "displayName"),
        .mimeType = optionalText(json, "mimeType"),
        .uniformType = optionalText(json, "uniformType"),
        .byteSize = byteSize ? std::optional(byteSize->integer()) : std::nullopt,
        .archivePath = optionalText(json, "archivePath"),
        .sha256 = optionalText(json, "sha256"),
        .availability = readWord<AttachmentAvailability>(json.required("availability")),
    };
}

template <>
ArchiveParticipant readJSON(const JSONValue& json) {
    return ArchiveParticipant{
        .id = requiredText(json, "id"),
        .address = requiredText(json, "address"),
        .displayName = optionalText(json, "displayName"),
        .isMe = json.required("isMe").truth(),
        .avatarData = optionalData(json, "avatarData"),
        .avatarMimeType = optionalText(json, "avatarMimeType"),
        .avatarPath = optionalText(json, "avatarPath"),
    };
}

template <>
ArchiveMessage readJSON(const JSONValue& json) {
    return ArchiveMessage{
        .id = requiredID(json),
        .guid = requiredText(json, "guid"),
        .date = json.required("date").date(),
        .senderID = optionalText(json, "senderID"),
        .isFromMe = json.required("isFromMe").truth(),
        .service = optionalText(json, "service"),
        .text = optionalText(json, "text"),
        .subject = optionalText(json, "subject"),
        .replyToGUID = optionalText(json, "replyToGUID"),
        .editedAt = optionalDate(json, "editedAt"),
        .retractedAt = optionalDate(json, "retractedAt"),
        .reactions = readJSONArray<ArchiveReaction>(json, "reactions"),
        .attachments = readJSONArray<ArchiveAttachment>(json, "attachments"),
        .payloadState = readWord<MessagePayloadState>(json.required("payloadState")),
    };
}

template <>
ArchiveConversation readJSON(const JSONValue& json) {
    return ArchiveConversation{
        .schemaVersion = json.required("schemaVersion").integer(),
        .id = requiredID(json),
        .guid = requiredText(json, "guid"),
        .title = requiredText(json, "title"),
        .service = optionalText(json, "service"),
        .participants = readJSONArray<ArchiveParticipant>(json, "participants"),
        .sourceMessageCount = json.required("sourceMessageCount").integer(),
        .messages = readJSONArray<ArchiveMessage>(json, "messages"),
        .warnings = readJSONArray<ArchiveWarning>(json, "warnings"),
        .generatedAt = json.required("generatedAt").date(),
        .sourceSystemVersion = requiredText(json, "sourceSystemVersion"),
    };
}

} // namespace quillbook
