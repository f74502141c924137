#include "store/AttachmentRowReader.h"

#include <optional>
#include <string>

namespace quillbook {
namespace {

// Stands for a number that is not there; no row has it.
constexpr std::int64_t noRow = -1;

std::optional<std::string> text(const SQLiteRow& row, std::string_view column) {
    const auto found = row.text(column);
    return found ? std::optional<std::string>(*found) : std::nullopt;
}

/// The last component of a path, slashes behind it not counted; nothing where there is none.
std::optional<std::string> lastPathComponent(std::string_view path) {
    const auto last = path.find_last_not_of('/');
    if (last == std::string_view::npos) return std::nullopt;
    path = path.substr(0, last + 1);
    return std::string(path.substr(path.rfind('/') + 1));
}

std::string displayName(const SQLiteRow& row) {
    if (const auto name = row.text("transfer_name")) return std::string(*name);
    const auto filename = row.text("filename");
    return (filename ? lastPathComponent(*filename) : std::nullopt).value_or("Attachment");
}

ArchiveAttachment attachment(const SQLiteRow& row) {
    return ArchiveAttachment{
        .id = SourceID{std::to_string(row.storedInteger("attachment_id").value_or(noRow))},
        .guid = text(row, "guid"),
        .originalFilename = text(row, "filename"),
        .displayName = displayName(row),
        .mimeType = text(row, "mime_type"),
        .uniformType = text(row, "uti"),
        .byteSize = row.storedInteger("total_bytes"),
        .archivePath = std::nullopt,
        .sha256 = std::nullopt,
        .availability = AttachmentAvailability::available,
    };
}

} // namespace

AttachmentsByMessage readAttachments(SQLiteDatabase& database, std::int64_t chatID) {
    const SQLiteValue chat = chatID;
    const auto rows =
        database.query("SELECT maj.message_id, a.ROWID AS attachment_id, a.guid, a.filename, a.mime_type,\n"
                       "       a.uti, a.total_bytes, a.transfer_name\n"
                       "  FROM message_attachment_join maj JOIN attachment a ON a.ROWID = maj.attachment_id\n"
                       "  JOIN chat_message_join cmj ON cmj.message_id = maj.message_id\n"
                       " WHERE cmj.chat_id = ? ORDER BY maj.message_id, a.ROWID",
                       {&chat, 1});
    AttachmentsByMessage attachments;
    for (const SQLiteRow& row : rows) {
        attachments[row.storedInteger("message_id").value_or(noRow)].push_back(attachment(row));
    }
    return attachments;
}

} // namespace quillbook
