#include "store/StoredConversationReader.h"

#include "core/records/Cancellation.h"
#include "store/AttachmentRowReader.h"
#include "store/ConversationStatements.h"
#include "store/MessageDate.h"
#include "store/ParticipantDirectory.h"
#include "store/ReactionReader.h"
#include "store/RepositoryError.h"

#include <unordered_map>

namespace quillbook {
namespace {

std::optional<std::string> text(const SQLiteRow& row, std::string_view column) {
    const auto found = row.text(column);
    return found ? std::optional<std::string>(*found) : std::nullopt;
}

std::string optionalColumn(const std::set<std::string>& columns, const std::string& name) {
    return columns.contains(name) ? "m." + name : "NULL";
}

SQLiteRow chatRow(SQLiteDatabase& database, const SourceID& id, std::int64_t chatID) {
    const SQLiteValue chat = chatID;
    const auto rows = database.query(
        "SELECT ROWID, guid, display_name, chat_identifier, service_name FROM chat WHERE ROWID = ?",
        {&chat, 1});
    if (rows.empty()) throw RepositoryError(RepositoryError::Reason::conversationNotFound, id.rawValue);
    return rows.front();
}

/// 0 stands for "never" in the columns of edits and retractions.
std::optional<Date> dateUnlessZero(const SQLiteRow& row, std::string_view column) {
    return row.storedInteger(column).value_or(0) == 0 ? std::nullopt : messageDate(row, column);
}

/// Turns message rows into messages, reactions and warnings, row by row.
class MessageRowWalk {
public:
    MessageRowWalk(const AttributedBodyDecoder& bodyDecoder, const ParticipantDirectory& directory,
                   AttachmentsByMessage attachments)
        : bodyDecoder_(bodyDecoder), directory_(directory), attachments_(std::move(attachments)) {}

    void take(const SQLiteRow& row) {
        const auto rowID = row.storedInteger("message_id");
        if (!rowID) throw RepositoryError(RepositoryError::Reason::missingRequiredColumn, "message_id");
        const auto type = row.storedInteger("associated_message_type");
        if (isReactionType(type)) {
            takeReaction(row, *rowID, *type);
        } else {
            takeMessage(row, *rowID);
        }
    }

    void reserve(std::size_t count) { messages_.reserve(count); }

    /// Reactions whose target is not in the chat are dropped.
    std::vector<ArchiveMessage> takeMessages() {
        if (reactionsByTarget_.empty()) return std::move(messages_);
        for (ArchiveMessage& message : messages_) {
            const auto found = reactionsByTarget_.find(message.guid);
            if (found != reactionsByTarget_.end()) message.reactions = found->second;
        }
        return std::move(messages_);
    }

    std::vector<ArchiveWarning> takeWarnings() { return std::move(warnings_); }

private:
    void warn(const char* code, const char* summary, std::int64_t rowID) {
        const std::string id = std::to_string(rowID);
        warnings_.push_back(
            {.id = std::string(code) + "-" + id, .code = code, .summary = summary, .sourceID = SourceID{id}});
    }

    void takeReaction(const SQLiteRow& row, std::int64_t rowID, std::int64_t type) {
        const auto target = reactionTargetGUID(row.text("associated_message_guid"));
        if (!target) {
            return warn("unresolved_reaction", "A reaction could not be matched to its message.", rowID);
        }
        reactionsByTarget_[std::string(*target)].push_back(ArchiveReaction{
            .id = "reaction-" + std::to_string(rowID),
            .senderID = directory_.sender(row),
            .kind = reactionKind(type),
            .isRemoved = isReactionRemoval(type),
            .date = messageDate(row, "date"),
        });
    }

    AttributedBodyDecoder::Body body(const SQLiteRow& row, std::int64_t rowID) {
        const auto plain = row.text("text");
        if (plain && !plain->empty()) return {std::string(*plain), MessagePayloadState::decoded};
        const auto blob = row.blob("attributedBody");
        AttributedBodyDecoder::Body decoded = bodyDecoder_.decode(blob);
        if (decoded.payloadState == MessagePayloadState::unsupported && blob) {
            warn("unsupported_payload", "A message payload could not be fully decoded.", rowID);
        }
        return decoded;
    }

    std::vector<ArchiveAttachment> attachments(std::int64_t rowID) const {
        const auto found = attachments_.find(rowID);
        return found == attachments_.end() ? std::vector<ArchiveAttachment>() : found->second;
    }

    void takeMessage(const SQLiteRow& row, std::int64_t rowID) {
        AttributedBodyDecoder::Body decoded = body(row, rowID);
        ArchiveMessage& message = messages_.emplace_back();
        message.id.rawValue = std::to_string(rowID);
        const auto guid = row.text("guid");
        message.guid = guid ? std::string(*guid) : "message-" + message.id.rawValue;
        message.date = messageDate(row, "date").value_or(Date());
        message.senderID = directory_.sender(row);
        message.isFromMe = row.storedInteger("is_from_me").value_or(1) != 0;
        message.service = text(row, "service");
        message.text = std::move(decoded.text);
        message.subject = text(row, "subject");
        message.replyToGUID = text(row, "thread_originator_guid");
        message.editedAt = dateUnlessZero(row, "date_edited");
        message.retractedAt = dateUnlessZero(row, "date_retracted");
        message.attachments = attachments(rowID);
        message.payloadState = decoded.payloadState;
    }

    const AttributedBodyDecoder& bodyDecoder_;
    const ParticipantDirectory& directory_;
    AttachmentsByMessage attachments_;
    std::unordered_map<std::string, std::vector<ArchiveReaction>> reactionsByTarget_;
    std::vector<ArchiveMessage> messages_;
    std::vector<ArchiveWarning> warnings_;
};

} // namespace

std::string messageStatement(const std::set<std::string>& columns) {
    return "SELECT m.ROWID AS message_id, m.guid, m.text, m.attributedBody, m.handle_id,\n"
           "       m.date, m.is_from_me, m.service, m.subject, m.associated_message_guid,\n"
           "       m.associated_message_type, " +
           optionalColumn(columns, "thread_originator_guid") + " AS thread_originator_guid,\n       " +
           optionalColumn(columns, "date_edited") + " AS date_edited, " +
           optionalColumn(columns, "date_retracted") +
           " AS date_retracted\n"
           "  FROM chat_message_join cmj JOIN message m ON m.ROWID = cmj.message_id\n"
           " WHERE cmj.chat_id = ? ORDER BY m.date, m.ROWID";
}

std::set<std::string> readMessageColumns(SQLiteDatabase& database) {
    std::set<std::string> columns;
    for (const SQLiteRow& row : database.query("PRAGMA table_info(message)")) {
        if (const auto name = row.text("name")) columns.emplace(*name);
    }
    return columns;
}

StoredConversation loadStoredConversation(SQLiteDatabase& database, const AttributedBodyDecoder& bodyDecoder,
                                          const std::set<std::string>& messageColumns, const SourceID& id,
                                          std::int64_t chatID, const std::stop_token& stop) {
    const SQLiteRow chat = chatRow(database, id, chatID);
    ParticipantDirectory directory(database, chatID);
    throwIfCancelled(stop);
    const SQLiteValue chatValue = chatID;
    std::vector<SQLiteRow> rows = database.query(messageStatement(messageColumns), {&chatValue, 1});
    directory.addSendersOutside(database, rows);
    throwIfCancelled(stop);

    MessageRowWalk walk(bodyDecoder, directory, readAttachments(database, chatID));
    walk.reserve(rows.size());
    const auto rowCount = static_cast<std::int64_t>(rows.size());
    for (SQLiteRow& row : rows) {
        throwIfCancelled(stop);
        walk.take(row);
        row = SQLiteRow(); // Gives its bytes back while the messages grow.
    }

    StoredConversation stored;
    stored.chatName = text(chat, "display_name").value_or("");
    ArchiveConversation& conversation = stored.conversation;
    conversation.id = id;
    conversation.guid = text(chat, "guid").value_or("chat-" + std::to_string(chatID));
    conversation.title =
        stored.chatName.empty() ? titleWithoutNames(chat, directory.addresses()) : stored.chatName;
    conversation.service = text(chat, "service_name");
    conversation.participants = directory.takeParticipants();
    conversation.sourceMessageCount = rowCount;
    conversation.messages = walk.takeMessages();
    conversation.warnings = walk.takeWarnings();
    return stored;
}

} // namespace quillbook
