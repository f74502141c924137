#include "tools/sample/LibraryWriter.h"

#include "tools/sample/AttributedBodies.h"
#include "tools/sample/KeyedArchiveWriter.h"
#include "tools/sample/SampleSchema.h"
#include "tools/writing/SQLiteWriting.h"

namespace quillbook::sample {
namespace {

constexpr std::int64_t groupStyle = 43;
constexpr std::int64_t personStyle = 45;
constexpr std::int64_t readyState = 3;
constexpr std::int64_t transferFinished = 5;
constexpr std::string_view ownAddress = "robin@example.org";

constexpr std::string_view messageColumns =
    "ROWID, guid, text, handle_id, subject, country, attributedBody, version, service, account, "
    "account_guid, date, "
    "date_read, date_delivered, is_delivered, is_finished, is_from_me, is_read, is_sent, "
    "cache_has_attachments, "
    "cache_roomnames, was_data_detected, is_audio_message, item_type, group_title, associated_message_guid, "
    "associated_message_type, associated_message_range_length, expressive_send_style_id, "
    "message_summary_info, "
    "destination_caller_id, thread_originator_guid, thread_originator_part, date_retracted, date_edited, "
    "part_count, "
    "associated_message_emoji";

constexpr std::string_view chatColumns =
    "guid, style, state, account_id, properties, chat_identifier, service_name, room_name, account_login, "
    "last_addressed_handle, display_name, group_id, successful_query, original_group_id";

constexpr std::string_view attachmentColumns = "guid, created_date, start_date, filename, uti, mime_type, "
                                               "transfer_state, is_outgoing, user_info, transfer_name, "
                                               "total_bytes, is_sticker, hide_attachment, original_guid";

/// What the two columns text and attributedBody hold.
struct StoredBody {
    std::optional<std::string> text;
    std::optional<Data> archive;
};

/// They begin with a byte that no UTF-8 text has.
Data randomBytes(DeterministicRandom& random) {
    Data bytes = {0xFE};
    for (auto count = random.between(40, 200); count > 0; --count) {
        bytes.push_back(static_cast<std::uint8_t>(random.next()));
    }
    return bytes;
}

BodyContents contentsOf(const MessageRow& message) {
    BodyContents contents;
    contents.text = message.text;
    contents.isFromMe = message.isFromMe;
    for (const AttachmentRow& attachment : message.attachments) {
        contents.attachments.push_back({attachment.guid, attachment.transferName});
    }
    return contents;
}

StoredBody storedBody(const MessageRow& message, DeterministicRandom& random) {
    const BodyContents contents = contentsOf(message);
    switch (message.form) {
    case BodyForm::textAndArchive:
        return {bodyText(contents), typedArchiveBody(contents, Mutability::immutable)};
    case BodyForm::textOnly:
        return {bodyText(contents), std::nullopt};
    case BodyForm::archiveOnly:
        return {std::nullopt, typedArchiveBody(contents, Mutability::immutable)};
    case BodyForm::mutableArchiveOnly:
        return {std::nullopt, typedArchiveBody(contents, Mutability::mutableString)};
    case BodyForm::keyedArchiveOnly:
        return {std::nullopt, keyedArchiveBody(contents)};
    case BodyForm::unreadable:
        return {std::nullopt, randomBytes(random)};
    case BodyForm::emptyText:
        return {std::string(), std::nullopt};
    case BodyForm::nothing:
        return {};
    }
    return {};
}

ColumnValue blobOrNull(const std::optional<Data>& data) {
    return data ? ColumnValue(std::span<const std::uint8_t>(*data)) : ColumnValue();
}

ColumnValue textUnlessEmpty(const std::string& text) {
    return text.empty() ? ColumnValue() : ColumnValue(std::string_view(text));
}

ColumnValue flag(bool value) {
    return std::int64_t{value ? 1 : 0};
}

std::int64_t nanoseconds(std::int64_t seconds) {
    return StoredDate{seconds}.raw();
}

std::optional<Data> editSummaryOf(const MessageRow& message) {
    if (!message.earlierText) return std::nullopt;
    return editSummary(contentsOf(message), *message.earlierText, message.editedSeconds);
}

} // namespace

struct LibraryWriter::Statements {
    explicit Statements(const std::filesystem::path& file) : database(file) {}

    /// The file is new: until it is finished nobody misses it, so that neither journal nor flushing is
    /// needed.
    struct Prepared {
        explicit Prepared(WritableDatabase& database) {
            database.execute(
                "PRAGMA page_size = 4096; PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF;"
                "PRAGMA cache_size = -65536; PRAGMA encoding = 'UTF-8'; PRAGMA user_version = 1;");
            database.execute("BEGIN");
            database.execute(schemaTables);
        }
    };

    WritableDatabase database;
    Prepared prepared{database};
    PreparedWrite handle{database, insertStatement("handle", "id, country, service, uncanonicalized_id")};
    PreparedWrite chat{database, insertStatement("chat", chatColumns)};
    PreparedWrite properties{database, "UPDATE chat SET properties = ? WHERE ROWID = ?"};
    PreparedWrite chatHandle{database, insertStatement("chat_handle_join", "chat_id, handle_id")};
    PreparedWrite message{database, insertStatement("message", messageColumns)};
    PreparedWrite chatMessage{database,
                              insertStatement("chat_message_join", "chat_id, message_id, message_date")};
    PreparedWrite attachment{database, insertStatement("attachment", attachmentColumns)};
    PreparedWrite messageAttachment{database,
                                    insertStatement("message_attachment_join", "message_id, attachment_id")};
    PreparedWrite deleted{database, insertStatement("deleted_messages", "guid")};
    PreparedWrite syncDeleted{database, insertStatement("sync_deleted_messages", "guid, recordID")};
    PreparedWrite property{database, insertStatement("_SqliteDatabaseProperties", "key, value")};
};

LibraryWriter::LibraryWriter(const std::filesystem::path& file, std::uint64_t seed)
    : statements_(std::make_unique<Statements>(file)), random_(seed, "database"),
      accountGUID_(random_.uuid()) {
    statements_->property.run({std::string_view("_ClientVersion"), std::string_view("18026")});
    statements_->property.run({std::string_view("_UniqueIdentifier"), std::string_view(accountGUID_)});
    statements_->property.run({std::string_view("counter_in_all"), std::string_view("0")});
    statements_->database.execute("INSERT INTO kvtable (key, value) VALUES ('lastFailedMessageDate', X'00'), "
                                  "('IMDLocalSyncVersion', X'01')");
}

LibraryWriter::~LibraryWriter() = default;

std::int64_t LibraryWriter::addHandle(const HandleRow& handle) {
    statements_->handle.run({std::string_view(handle.address), std::string_view(handle.country),
                             std::string_view(handle.service), ColumnValue()});
    return statements_->database.lastRowID();
}

std::int64_t LibraryWriter::addChat(const ChatRow& chat) {
    const Data properties = chatProperties(chat.lastMessageGUID, chat.isGroup);
    const std::string login = "E:" + std::string(ownAddress);
    statements_->chat.run({std::string_view(chat.guid), chat.isGroup ? groupStyle : personStyle, readyState,
                           std::string_view(accountGUID_), std::span<const std::uint8_t>(properties),
                           std::string_view(chat.identifier), std::string_view(chat.service),
                           chat.isGroup ? ColumnValue(std::string_view(chat.identifier)) : ColumnValue(),
                           std::string_view(login), ownAddress, std::string_view(chat.displayName),
                           std::string_view(chat.groupID), std::int64_t{1}, std::string_view(chat.groupID)});
    const std::int64_t chatID = statements_->database.lastRowID();
    for (const std::int64_t handle : chat.handles)
        statements_->chatHandle.run({chatID, handle});
    return chatID;
}

void LibraryWriter::setLastMessage(std::int64_t chat, const ChatRow& row) {
    const Data properties = chatProperties(row.lastMessageGUID, row.isGroup);
    statements_->properties.run({std::span<const std::uint8_t>(properties), chat});
}

void LibraryWriter::insertMessage(const MessageRow& message) {
    const StoredBody body = storedBody(message, random_);
    const std::optional<Data> summary = editSummaryOf(message);
    const bool isReaction = message.associatedType >= 2000;
    const bool isSMS = message.service == "SMS";
    const std::string account = isSMS ? "P:+14155550100" : "E:" + std::string(ownAddress);
    const std::int64_t date = message.date.raw();
    const StoredDate delivered{message.date.seconds + 1, message.date.unit};
    const StoredDate read{message.date.seconds + 40, message.date.unit};
    const auto parts = static_cast<std::int64_t>(message.attachments.size() + (message.text.empty() ? 0 : 1));
    statements_->message.run(
        {message.rowID,
         std::string_view(message.guid),
         textOrNull(body.text),
         message.handle,
         textOrNull(message.subject),
         ColumnValue(),
         blobOrNull(body.archive),
         std::int64_t{10},
         std::string_view(message.service),
         std::string_view(account),
         std::string_view(accountGUID_),
         date,
         message.isFromMe && isSMS ? std::int64_t{0} : read.raw(),
         message.isFromMe ? delivered.raw() : std::int64_t{0},
         flag(message.isFromMe && !isSMS),
         flag(true),
         flag(message.isFromMe),
         flag(!message.isFromMe),
         flag(message.isFromMe),
         flag(!message.attachments.empty()),
         textUnlessEmpty(message.roomName),
         flag(!message.text.empty()),
         flag(message.isAudio),
         message.itemType,
         textOrNull(message.groupTitle),
         textOrNull(message.associatedGUID),
         message.associatedType,
         isReaction ? static_cast<std::int64_t>(message.text.size()) : std::int64_t{0},
         textOrNull(message.sendStyle),
         blobOrNull(summary),
         ownAddress,
         textOrNull(message.threadOriginatorGUID),
         message.threadOriginatorGUID ? ColumnValue(std::string_view("0:0:0")) : ColumnValue(),
         nanoseconds(message.retractedSeconds),
         nanoseconds(message.editedSeconds),
         parts,
         textOrNull(message.associatedEmoji)});
}

void LibraryWriter::insertAttachment(const MessageRow& message, const AttachmentRow& attachment) {
    statements_->attachment.run(
        {std::string_view(attachment.guid), message.date.seconds, message.date.seconds,
         textOrNull(attachment.storedPath), std::string_view(attachment.uniformType),
         std::string_view(attachment.mimeType), transferFinished, flag(message.isFromMe), ColumnValue(),
         std::string_view(attachment.transferName), attachment.byteCount, flag(false), flag(false),
         std::string_view(attachment.guid)});
    statements_->messageAttachment.run({message.rowID, statements_->database.lastRowID()});
}

void LibraryWriter::addMessage(std::int64_t chat, const MessageRow& message) {
    insertMessage(message);
    statements_->chatMessage.run({chat, message.rowID, message.date.raw()});
    for (const AttachmentRow& attachment : message.attachments)
        insertAttachment(message, attachment);
}

void LibraryWriter::addDeletedMessage(const std::string& guid) {
    const std::string record = random_.uuid();
    statements_->deleted.run({std::string_view(guid)});
    statements_->syncDeleted.run({std::string_view(guid), std::string_view(record)});
}

void LibraryWriter::finish() {
    statements_->database.execute(schemaIndexes);
    statements_->database.execute("COMMIT");
    statements_->database.execute("PRAGMA journal_mode = DELETE");
}

} // namespace quillbook::sample
