#include "export/CSVTranscript.h"

#include "core/records/EnumWords.h"
#include "core/text/GraphemeClusters.h"
#include "core/text/ISO8601.h"
#include "export/ByteSet.h"
#include "export/SenderNames.h"
#include "export/TranscriptBuffer.h"

#include <array>
#include <optional>
#include <string>

namespace quillbook {
namespace {

// Spreadsheets take a file without it for one in the system's old code page.
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

constexpr std::array<std::string_view, 12> columns = {
    "message_id", "guid",     "timestamp", "direction", "sender",           "service",
    "text",       "reply_to", "edited_at", "reactions", "attachment_count", "attachments"};

constexpr ByteSet formulaStarts("=+-@\t\r");
constexpr ByteSet quotedCharacters(",\"\n\r");

constexpr bool isASCII(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

/// Whether the first user-perceived character is exactly one of the formula starts: with a combining mark, or
/// as CR LF, it is another.
bool startsFormula(std::string_view field) {
    if (field.empty() || !formulaStarts.contains(field[0])) return false;
    // UAX #29, GB3: of two ASCII characters only CR and LF belong together.
    if (field.size() == 1 || isASCII(field[1])) return !field.starts_with("\r\n");
    // Whether the cluster goes on is settled by the next scalar, of four bytes at most.
    return firstGrapheme(field.substr(0, 8)).size() == 1;
}

/// RFC 4180, section 2.6 and 2.7: a field holding a comma, quote or line break is quoted, and quotes in it
/// are doubled.
void appendField(std::string& row, std::string_view field) {
    const std::string_view guard = startsFormula(field) ? "'" : "";
    if (quotedCharacters.firstIn(field) == field.size()) {
        (row += guard) += field;
        return;
    }
    (row += '"') += guard;
    while (true) {
        const std::size_t quote = field.find('"');
        row += field.substr(0, quote);
        if (quote == std::string_view::npos) break;
        row += "\"\"";
        field.remove_prefix(quote + 1);
    }
    row += '"';
}

std::string_view orEmpty(const std::optional<std::string>& text) {
    return text ? std::string_view(*text) : std::string_view();
}

void appendListed(std::string& list, std::string_view item) {
    if (!list.empty()) list += ';';
    list += item;
}

/// One message's row; keeps the memory of the cells that are put together from one row to the next.
class MessageRow {
public:
    explicit MessageRow(const SenderNames& senders) : senders_(senders) {}

    void write(const ArchiveMessage& message, TranscriptBuffer& buffer) {
        fill(message);
        const std::array<std::string_view, columns.size()> fields = {message.id.rawValue,
                                                                     message.guid,
                                                                     timestamp_,
                                                                     message.isFromMe ? "outgoing"
                                                                                      : "incoming",
                                                                     senders_.sender(message),
                                                                     orEmpty(message.service),
                                                                     orEmpty(message.text),
                                                                     orEmpty(message.replyToGUID),
                                                                     editedAt_,
                                                                     reactions_,
                                                                     attachmentCount_,
                                                                     attachments_};
        writeCSVRow(fields, buffer);
    }

private:
    void fill(const ArchiveMessage& message) {
        timestamp_ = iso8601Milliseconds(message.date);
        editedAt_ = message.editedAt ? iso8601Milliseconds(*message.editedAt) : std::string();
        reactions_.clear();
        for (const ArchiveReaction& reaction : message.reactions) {
            if (!reaction.isRemoved) appendListed(reactions_, rawValue(reaction.kind));
        }
        attachmentCount_ = std::to_string(message.attachments.size());
        attachments_.clear();
        for (const ArchiveAttachment& attachment : message.attachments) {
            if (attachment.archivePath) appendListed(attachments_, *attachment.archivePath);
        }
    }

    const SenderNames& senders_;
    std::string timestamp_;
    std::string editedAt_;
    std::string reactions_;
    std::string attachmentCount_;
    std::string attachments_;
};

} // namespace

void writeCSVTranscript(const ArchiveConversation& conversation, const std::filesystem::path& file) {
    TranscriptBuffer buffer(file);
    buffer.writeAhead(byteOrderMark);
    writeCSVRow(columns, buffer);
    const SenderNames senders(conversation.participants);
    MessageRow row(senders);
    for (const ArchiveMessage& message : conversation.messages)
        row.write(message, buffer);
    buffer.finish();
}

void writeCSVRow(std::span<const std::string_view> fields, TranscriptBuffer& buffer) {
    std::string& row = buffer.text();
    std::string_view separator;
    for (const std::string_view field : fields) {
        row += separator;
        appendField(row, field);
        separator = ",";
    }
    row += "\r\n";
    buffer.endBlock();
}

} // namespace quillbook
