#include "core/records/RecordsJSON.h"

#include "core/records/EnumWords.h"

namespace quillbook {
namespace {

void writeTexts(JSONWriter& json, std::string_view name, const std::vector<std::string>& texts) {
    json.key(name);
    json.beginArray();
    for (const std::string& text : texts)
        json.value(text);
    json.endArray();
}

template <typename Enumeration>
void writeWord(JSONWriter& json, std::string_view name, Enumeration word) {
    json.member(name, rawValue(word));
}

} // namespace

void writeJSON(JSONWriter& json, ExportStage stage) {
    json.value(rawValue(stage));
}

void writeJSON(JSONWriter& json, ReactionKind kind) {
    json.value(rawValue(kind));
}

void writeJSON(JSONWriter& json, MessagePayloadState state) {
    json.value(rawValue(state));
}

void writeJSON(JSONWriter& json, AttachmentAvailability availability) {
    json.value(rawValue(availability));
}

void writeJSON(JSONWriter& json, const SourceID& id) {
    json.value(id);
}

void writeJSON(JSONWriter& json, const ExportOptions& options) {
    json.beginObject();
    json.member("includeCSV", options.includeCSV);
    json.member("includeJSON", options.includeJSON);
    json.member("includeMarkdown", options.includeMarkdown);
    json.endObject();
}

void writeJSON(JSONWriter& json, const ArchiveWarning& warning) {
    json.beginObject();
    json.member("code", warning.code);
    json.member("id", warning.id);
    json.member("sourceID", warning.sourceID);
    json.member("summary", warning.summary);
    json.endObject();
}

void writeJSON(JSONWriter& json, const ConversationSummary& summary) {
    json.beginObject();
    json.member("attachmentCount", summary.attachmentCount);
    json.member("avatarData", summary.avatarData);
    json.member("avatarMimeType", summary.avatarMimeType);
    json.member("firstMessageDate", summary.firstMessageDate);
    json.member("guid", summary.guid);
    json.member("id", summary.id);
    json.member("lastMessage", summary.lastMessage);
    json.member("lastMessageDate", summary.lastMessageDate);
    json.member("messageCount", summary.messageCount);
    writeTexts(json, "participantAddresses", summary.participantAddresses);
    json.member("title", summary.title);
    json.endObject();
}

void writeJSON(JSONWriter& json, const ArchiveReaction& reaction) {
    json.beginObject();
    json.member("date", reaction.date);
    json.member("id", reaction.id);
    json.member("isRemoved", reaction.isRemoved);
    writeWord(json, "kind", reaction.kind);
    json.member("senderID", reaction.senderID);
    json.endObject();
}

void writeJSON(JSONWriter& json, const ArchiveAttachment& attachment) {
    json.beginObject();
    json.member("archivePath", attachment.archivePath);
    writeWord(json, "availability", attachment.availability);
    json.member("byteSize", attachment.byteSize);
    json.member("displayName", attachment.displayName);
    json.member("guid", attachment.guid);
    json.member("id", attachment.id);
    json.member("mimeType", attachment.mimeType);
    json.member("originalFilename", attachment.originalFilename);
    json.member("sha256", attachment.sha256);
    json.member("uniformType", attachment.uniformType);
    json.endObject();
}

void writeJSON(JSONWriter& json, const ArchiveParticipant& participant) {
    json.beginObject();
    json.member("address", participant.address);
    json.member("avatarData", participant.avatarData);
    json.member("avatarMimeType", participant.avatarMimeType);
    json.member("avatarPath", participant.avatarPath);
    json.member("displayName", participant.displayName);
    json.member("id", participant.id);
    json.member("isMe", participant.isMe);
    json.endObject();
}

void writeJSON(JSONWriter& json, const ArchiveMessage& message) {
    json.beginObject();
    writeJSONArray(json, "attachments", message.attachments);
    json.member("date", message.date);
    json.member("editedAt", message.editedAt);
    json.member("guid", message.guid);
    json.member("id", message.id);
    json.member("isFromMe", message.isFromMe);
    writeWord(json, "payloadState", message.payloadState);
    writeJSONArray(json, "reactions", message.reactions);
    json.member("replyToGUID", message.replyToGUID);
    json.member("retractedAt", message.retractedAt);
    json.member("senderID", message.senderID);
    json.member("service", message.service);
    json.member("subject", message.subject);
    json.member("text", message.text);
    json.endObject();
}

void writeJSON(JSONWriter& json, const ArchiveConversation& conversation) {
    json.beginObject();
    json.member("generatedAt", conversation.generatedAt);
    json.member("guid", conversation.guid);
    json.member("id", conversation.id);
    writeJSONArray(json, "messages", conversation.messages);
    writeJSONArray(json, "participants", conversation.participants);
    json.member("schemaVersion", conversation.schemaVersion);
    json.member("service", conversation.service);
    json.member("sourceMessageCount", conversation.sourceMessageCount);
    json.member("sourceSystemVersion", conversation.sourceSystemVersion);
    json.member("title", conversation.title);
    writeJSONArray(json, "warnings", conversation.warnings);
    json.endObject();
}

} // namespace quillbook
