#include "tools/sample/LibraryTally.h"

namespace quillbook::sample {

void LibraryTally::fill(SampleReport& report) const {
    report.chatCount = static_cast<std::int64_t>(chats_.size());
    report.messageCount = messageCount_;
    report.reactionCount = reactionCount_;
    std::int64_t most = -1;
    for (const auto& [chat, tally] : chats_) {
        report.attachmentCount += tally.attachmentCount;
        if (tally.attachmentCount <= most) continue;
        most = tally.attachmentCount;
        report.richestChatID = chat;
        report.richestChatGUID = tally.guid;
        report.richestChatTitle = tally.title;
    }
}

} // namespace quillbook::sample
