#include "tools/sample/MeasuringLibrary.h"

#include "tools/sample/ConversationScript.h"
#include "tools/sample/ReactionRows.h"
#include "tools/sample/SampleDialogues.h"

#include <algorithm>
#include <cmath>

namespace quillbook::sample {
namespace {

constexpr std::int64_t messagesPerChat = 250;
constexpr std::int64_t firstDate = 441'763'200; // 2015-01-01
constexpr std::int64_t lastDate = 757'382'400;  // 2025-01-01
constexpr std::uint64_t rowsPerReaction = 20;
constexpr std::uint64_t rowsPerReply = 30;

/// Lines of all the small talk, in all its languages.
std::vector<std::string> talkLines() {
    std::vector<std::string> lines;
    for (const std::string_view text :
         {dialogues::friendsTalk, dialogues::familyTalk, dialogues::german, dialogues::spanish,
          dialogues::portuguese, dialogues::ukrainian, dialogues::japanese, dialogues::chinese,
          dialogues::korean, dialogues::hindi, dialogues::arabic, dialogues::hebrew, dialogues::lakeHouse}) {
        for (const ScriptBlock& block : parseScript(text).blocks) {
            for (const ScriptLine& line : block.lines) {
                if (!line.text.empty()) lines.push_back(line.text);
            }
        }
    }
    return lines;
}

/// One chat with what the next row may refer to.
struct MeasuredChat {
    std::int64_t chat = 0;
    ChatRow row;
    MessageRow latest; ///< The latest message that is no reaction.
};

std::string phoneNumber(std::int64_t number) {
    std::string digits = std::to_string(number);
    return "+1999" + std::string(7 - digits.size(), '0') + digits;
}

class MeasuringLibrary {
public:
    MeasuringLibrary(const SampleOptions& options, LibraryWriter& writer, AttachmentShelf& shelf,
                     LibraryTally& tally)
        : options_(options), writer_(writer), shelf_(shelf), tally_(tally),
          random_(options.seed, "measuring library"), lines_(talkLines()) {}

    void write() {
        const std::int64_t chatCount =
            options_.isOneChat ? 1 : std::max<std::int64_t>(1, options_.messageCount / messagesPerChat);
        for (std::int64_t number = 1; number <= chatCount; ++number)
            addChat(number);
        for (std::int64_t index = 0; index < options_.messageCount; ++index)
            addRow(index);
        for (const MeasuredChat& chat : chats_)
            writer_.setLastMessage(chat.chat, chat.row);
    }

private:
    void addChat(std::int64_t number) {
        MeasuredChat chat;
        const bool isGroup = options_.isOneChat || number % 5 == 0;
        for (int member = 0; member < (isGroup ? 4 : 1); ++member) {
            chat.row.handles.push_back(writer_.addHandle({phoneNumber(++handleCount_), "us", "iMessage"}));
        }
        chat.row.isGroup = isGroup;
        chat.row.groupID = random_.uuid();
        chat.row.identifier =
            isGroup ? "chat" + std::to_string(100'000'000'000'000 + number) : phoneNumber(handleCount_);
        chat.row.guid = (isGroup ? "iMessage;+;" : "iMessage;-;") + chat.row.identifier;
        if (isGroup && number % 2 == 1) chat.row.displayName = "Group " + std::to_string(number);
        chat.chat = writer_.addChat(chat.row);
        tally_.addChat(chat.chat, chat.row.guid,
                       chat.row.displayName.empty() ? chat.row.identifier : chat.row.displayName);
        chats_.push_back(std::move(chat));
    }

    /// Few chats have most of the messages: the square of a fraction leans to the first.
    MeasuredChat& nextChat() {
        const double fraction = random_.fraction();
        return chats_[static_cast<std::size_t>(fraction * fraction * static_cast<double>(chats_.size()))];
    }

    void addRow(std::int64_t index) {
        MeasuredChat& chat = nextChat();
        rowID_ += random_.between(1, 10);
        const bool takesAttachment = isAttachmentDue(index);
        const bool isReaction =
            !takesAttachment && !chat.latest.guid.empty() && random_.oneIn(rowsPerReaction);
        MessageRow row = plainRow(chat, index);
        if (isReaction) {
            makeReaction(row, chat.latest);
        } else {
            makeMessage(row, chat, index);
            while (isAttachmentDue(index) && addAttachment(row)) {
            }
            chat.latest = row;
        }
        chat.row.lastMessageGUID = row.guid;
        writer_.addMessage(chat.chat, row);
        tally_.addMessage(chat.chat, row);
    }

    /// The attachments lie at even distances over the rows.
    bool isAttachmentDue(std::int64_t index) const {
        return shelf_.remaining() > 0 &&
               shelf_.taken() < (index + 1) * options_.attachmentCount / options_.messageCount;
    }

    bool addAttachment(MessageRow& row) {
        auto attachment = shelf_.takeSmallFile(row.isFromMe);
        if (attachment) row.attachments.push_back(std::move(*attachment));
        return attachment.has_value();
    }

    MessageRow plainRow(const MeasuredChat& chat, std::int64_t index) {
        MessageRow row;
        row.rowID = rowID_;
        row.guid = random_.uuid();
        row.isFromMe = random_.oneIn(2);
        row.handle = random_.pick(chat.row.handles);
        if (row.isFromMe && chat.row.isGroup) row.handle = 0;
        if (chat.row.isGroup) row.roomName = chat.row.identifier;
        row.date.seconds = firstDate + (lastDate - firstDate) / options_.messageCount * index;
        return row;
    }

    void makeMessage(MessageRow& row, const MeasuredChat& chat, std::int64_t index) {
        row.text = random_.pick(lines_);
        row.form = index % 3 == 0 ? BodyForm::archiveOnly : BodyForm::textOnly;
        if (!chat.latest.guid.empty() && random_.oneIn(rowsPerReply))
            row.threadOriginatorGUID = chat.latest.guid;
    }

    void makeReaction(MessageRow& row, const MessageRow& target) {
        row.associatedType = 2000 + static_cast<std::int64_t>(random_.below(6));
        row.associatedGUID = "p:0/" + target.guid;
        row.text = reactionText(row.associatedType, "", target);
        row.form = BodyForm::textOnly;
    }

    const SampleOptions& options_;
    LibraryWriter& writer_;
    AttachmentShelf& shelf_;
    LibraryTally& tally_;
    DeterministicRandom random_;
    std::vector<std::string> lines_;
    std::vector<MeasuredChat> chats_;
    std::int64_t handleCount_ = 0;
    std::int64_t rowID_ = 0;
};

} // namespace

void writeMeasuringLibrary(const SampleOptions& options, LibraryWriter& writer, AttachmentShelf& shelf,
                           LibraryTally& tally) {
    MeasuringLibrary(options, writer, shelf, tally).write();
}

} // namespace quillbook::sample
