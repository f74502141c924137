#include "export/MarkdownTranscript.h"

#include "core/records/EnumWords.h"
#include "core/text/Localization.h"
#include "export/ByteSet.h"
#include "export/PercentEncoding.h"
#include "export/ReplyTargets.h"
#include "export/SenderNames.h"
#include "export/TranscriptBuffer.h"

namespace quillbook {
namespace {

constexpr ByteSet activeCharacters("\\`*_[]");

void appendEscaped(std::string& markdown, std::string_view text) {
    std::size_t start = 0;
    while (true) {
        const std::size_t found = activeCharacters.firstIn(text, start);
        markdown.append(text, start, found - start);
        if (found == text.size()) return;
        markdown += '\\';
        markdown += text[found];
        start = found + 1;
    }
}

class MarkdownWriter {
public:
    MarkdownWriter(const ArchiveConversation& conversation, const std::filesystem::path& file,
                   const DateText& dates)
        : conversation_(conversation), dates_(dates), buffer_(file), senders_(conversation.participants),
          replyTargets_(conversation.messages) {}

    void write() {
        writeHead();
        for (const ArchiveMessage& message : conversation_.messages)
            writeMessage(message);
        buffer_.finish();
    }

private:
    void writeHead();
    void writeMessage(const ArchiveMessage& message);
    void writeDayHeading(Date date);
    void writeSenderHeading(const ArchiveMessage& message);
    void writeReply(const std::string& guid);
    void writeAttachment(const ArchiveAttachment& attachment);
    void endParagraph();

    const ArchiveConversation& conversation_;
    const DateText& dates_;
    TranscriptBuffer buffer_;
    SenderNames senders_;
    ReplyTargets replyTargets_;
    std::string lastDay_;
};

void MarkdownWriter::writeHead() {
    std::string& text = buffer_.text();
    text += "# ";
    appendEscaped(text, conversation_.title);
    text += "\n\n- Backed up: " + dates_.dayAndTime(conversation_.generatedAt);
    text += "\n- Messages: " + std::to_string(conversation_.messages.size());
    text += "\n- Participants: ";
    std::string_view separator;
    for (const ArchiveParticipant& participant : conversation_.participants) {
        text += separator;
        appendEscaped(text, participantName(participant));
        separator = ", ";
    }
    endParagraph();
}

void MarkdownWriter::writeMessage(const ArchiveMessage& message) {
    writeDayHeading(message.date);
    writeSenderHeading(message);
    if (message.text && !message.text->empty()) {
        appendEscaped(buffer_.text(), *message.text);
        endParagraph();
    }
    if (message.replyToGUID) writeReply(*message.replyToGUID);
    if (message.editedAt) {
        buffer_.text() += "_Edited_";
        endParagraph();
    }
    for (const ArchiveReaction& reaction : message.reactions) {
        if (reaction.isRemoved) continue;
        ((buffer_.text() += "_Reaction: ") += rawValue(reaction.kind)) += '_';
        endParagraph();
    }
    for (const ArchiveAttachment& attachment : message.attachments)
        writeAttachment(attachment);
}

void MarkdownWriter::writeDayHeading(Date date) {
    std::string day = dates_.day(date);
    if (day == lastDay_) return;
    (buffer_.text() += "## ") += day;
    endParagraph();
    lastDay_ = std::move(day);
}

void MarkdownWriter::writeSenderHeading(const ArchiveMessage& message) {
    std::string& text = buffer_.text();
    text += "**";
    appendEscaped(text, senders_.sender(message));
    ((text += " — ") += dates_.time(message.date)) += "**\n";
    buffer_.endBlock();
}

void MarkdownWriter::writeReply(const std::string& guid) {
    std::string& text = buffer_.text();
    text += '_';
    if (const ArchiveMessage* earlier = replyTargets_.find(guid)) {
        text += localizedFormat("Reply to {} at {}", escapeMarkdown(senders_.localizedSender(*earlier)),
                                dates_.time(earlier->date));
    } else {
        text += localized("Reply to an earlier message");
    }
    text += '_';
    endParagraph();
}

void MarkdownWriter::writeAttachment(const ArchiveAttachment& attachment) {
    std::string& text = buffer_.text();
    text += attachment.archivePath ? "[" : "_Missing attachment: ";
    appendEscaped(text, attachment.displayName);
    if (attachment.archivePath) {
        text += "](";
        appendPercentEncoded(text, *attachment.archivePath);
    }
    text += attachment.archivePath ? ')' : '_';
    endParagraph();
}

/// Ends the line and leaves an empty one behind it.
void MarkdownWriter::endParagraph() {
    buffer_.text() += "\n\n";
    buffer_.endBlock();
}

} // namespace

void writeMarkdownTranscript(const ArchiveConversation& conversation, const std::filesystem::path& file,
                             const DateText& dates) {
    MarkdownWriter(conversation, file, dates).write();
}

std::string escapeMarkdown(std::string_view text) {
    std::string markdown;
    markdown.reserve(text.size());
    appendEscaped(markdown, text);
    return markdown;
}

} // namespace quillbook
