#include "store/MessagesRepository.h"

#include "core/records/Cancellation.h"
#include "core/text/CaseInsensitiveSearch.h"
#include "core/text/UnicodeCategories.h"
#include "core/text/UserLocale.h"
#include "platform/FileResidency.h"
#include "platform/SystemVersion.h"
#include "store/ConversationList.h"
#include "store/RepositoryError.h"
#include "store/StoredConversationReader.h"

#include <charconv>

namespace quillbook {
namespace {

/// An optional sign and digits, nothing else.
std::optional<std::int64_t> parsedInteger(std::string_view text) {
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == '-') return std::nullopt;
    }
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::int64_t chatNumber(const SourceID& id) {
    const auto number = parsedInteger(id.rawValue);
    if (!number) throw RepositoryError(RepositoryError::Reason::invalidConversationID, id.rawValue);
    return *number;
}

/// One snapshot for several statements, although another process may be writing. Rolled back unless
/// committed.
class ReadTransaction {
public:
    explicit ReadTransaction(SQLiteDatabase& database) : database_(database) {
        database_.query("BEGIN DEFERRED TRANSACTION");
    }
    ~ReadTransaction() {
        if (isCommitted_) return;
        try {
            database_.query("ROLLBACK");
        } catch (const std::exception&) {
            return; // The error that led here is the one that counts.
        }
    }
    ReadTransaction(const ReadTransaction&) = delete;
    ReadTransaction& operator=(const ReadTransaction&) = delete;

    void commit() {
        database_.query("COMMIT");
        isCommitted_ = true;
    }

private:
    SQLiteDatabase& database_;
    bool isCommitted_ = false;
};

void addIdentities(std::vector<ArchiveParticipant>& participants, const ContactIdentities& identities) {
    for (ArchiveParticipant& participant : participants) {
        const auto found = identities.find(participant.address);
        if (found == identities.end()) continue;
        participant.displayName = found->second.displayName;
        participant.avatarData = found->second.avatarData;
        participant.avatarMimeType = found->second.avatarMimeType;
    }
}

std::optional<std::string> ownedText(const SQLiteRow& row, std::string_view column) {
    const auto text = row.text(column);
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

MissingAttachmentRecord missingRecord(const SQLiteRow& row) {
    return MissingAttachmentRecord{
        .rowID = row.storedInteger("attachment_id").value_or(-1),
        .guid = ownedText(row, "guid").value_or(""),
        .filename = ownedText(row, "filename").value_or(""),
        .transferName = ownedText(row, "transfer_name"),
        .totalBytes = row.storedInteger("total_bytes"),
        .mimeType = ownedText(row, "mime_type"),
    };
}

} // namespace

MessagesRepository::MessagesRepository(const std::filesystem::path& database,
                                       std::shared_ptr<AttachmentLocating> attachmentLocator,
                                       std::shared_ptr<ContactResolving> contactResolver,
                                       const std::optional<SQLiteRestraint>& restraint)
    : database_(database, restraint), attachmentLocator_(std::move(attachmentLocator)),
      contactResolver_(std::move(contactResolver)) {}

std::vector<ConversationSummary> MessagesRepository::buildConversationList(Turn& turn) {
    const ConversationListRows rows = ConversationListRows::read(database_);
    turn.unlock();
    const ContactIdentities identities = contactResolver_->resolve(rows.addresses());
    turn.lock();
    return rows.summaries(identities);
}

std::vector<ConversationSummary> MessagesRepository::searchConversations(const std::string& query,
                                                                         std::stop_token stop) {
    const std::string wanted(trimmedWhitespace(query));
    Turn turn(turn_);
    if (!cachedConversationSummaries_) {
        // The turn is given up in between; another first call may have filled the cache with an equal list.
        std::vector<ConversationSummary> list = buildConversationList(turn);
        cachedConversationSummaries_ = std::move(list);
    }
    if (wanted.empty()) return *cachedConversationSummaries_;
    throwIfCancelled(stop);

    const auto ids = chatsContaining(database_, wanted);
    const CaseInsensitiveSearch titleSearch(wanted, userCollationLocale());
    std::vector<ConversationSummary> found;
    for (const ConversationSummary& summary : *cachedConversationSummaries_) {
        // A contact's name stands only in titles, never in the database.
        if (ids.contains(summary.id.rawValue) || titleSearch.isFoundIn(summary.title))
            found.push_back(summary);
    }
    return found;
}

const std::set<std::string>& MessagesRepository::messageColumns() {
    if (!messageColumnsCache_) messageColumnsCache_ = readMessageColumns(database_);
    return *messageColumnsCache_;
}

ArchiveConversation MessagesRepository::loadConversation(const SourceID& id, std::stop_token stop) {
    const std::int64_t chatID = chatNumber(id);
    Turn turn(turn_);
    const std::set<std::string>& columns = messageColumns();
    ReadTransaction transaction(database_);
    StoredConversation stored = loadStoredConversation(database_, bodyDecoder_, columns, id, chatID, stop);
    // The state that the album holds is the one of now, however long the contacts take.
    ArchiveConversation& conversation = stored.conversation;
    conversation.generatedAt = Date::now();
    conversation.sourceSystemVersion = systemVersion();
    transaction.commit();
    turn.unlock();

    std::vector<std::string> addresses;
    for (const ArchiveParticipant& participant : conversation.participants)
        addresses.push_back(participant.address);
    addIdentities(conversation.participants, contactResolver_->resolve(addresses));
    if (stored.chatName.empty() && conversation.participants.size() == 1) {
        conversation.title = conversation.participants.front().displayName.value_or(conversation.title);
    }
    return std::move(stored.conversation);
}

bool MessagesRepository::isOnThisMachine(const std::string& storedPath) {
    const auto file = attachmentLocator_->probe(storedPath);
    return file && isLocallyPresent(*file);
}

AttachmentStorageSurvey MessagesRepository::surveyAttachmentStorage(const SourceID& conversationID,
                                                                    std::stop_token stop) {
    AttachmentStorageSurvey survey;
    const ArchiveConversation conversation = loadConversation(conversationID, stop);
    for (const ArchiveMessage& message : conversation.messages) {
        for (const ArchiveAttachment& attachment : message.attachments) {
            throwIfCancelled(stop);
            const auto& storedPath = attachment.originalFilename;
            ++(storedPath && isOnThisMachine(*storedPath) ? survey.local : survey.missing);
        }
    }
    return survey;
}

std::vector<MissingAttachmentRecord> MessagesRepository::missingAttachments(const SourceID& conversationID,
                                                                            std::stop_token stop) {
    const std::int64_t chatID = chatNumber(conversationID);
    if (chatID < 1) {
        throw RepositoryError(RepositoryError::Reason::invalidConversationID, conversationID.rawValue);
    }
    Turn turn(turn_);
    const SQLiteValue chat = chatID;
    const auto rows =
        database_.query("SELECT DISTINCT a.ROWID AS attachment_id, a.guid, a.filename, a.transfer_name,\n"
                        "       a.total_bytes, a.mime_type\n"
                        "  FROM chat_message_join cmj\n"
                        "  JOIN message_attachment_join maj ON maj.message_id = cmj.message_id\n"
                        "  JOIN attachment a ON a.ROWID = maj.attachment_id\n"
                        " WHERE cmj.chat_id = ?",
                        {&chat, 1});
    turn.unlock();
    std::vector<MissingAttachmentRecord> missing;
    for (const SQLiteRow& row : rows) {
        throwIfCancelled(stop);
        MissingAttachmentRecord record = missingRecord(row);
        if (!record.filename.empty() && !isOnThisMachine(record.filename))
            missing.push_back(std::move(record));
    }
    return missing;
}

std::optional<std::filesystem::path> MessagesRepository::locateAttachment(const std::string& storedPath) {
    return attachmentLocator_->locate(storedPath);
}

void MessagesRepository::releaseAttachment(const std::filesystem::path& file) {
    attachmentLocator_->release(file);
}

} // namespace quillbook
