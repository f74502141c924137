#pragma once

#include "tools/sample/LibraryRows.h"
#include "tools/sample/SampleLibrary.h"

#include <cstdint>
#include <map>
#include <string>

namespace quillbook::sample {

/// Counts what goes into a library while it is written.
class LibraryTally {
public:
    void addChat(std::int64_t chat, std::string guid, std::string title) {
        chats_[chat] = {std::move(guid), std::move(title), 0};
    }
    void addMessage(std::int64_t chat, const MessageRow& message) {
        ++(message.associatedType >= 2000 ? reactionCount_ : messageCount_);
        chats_[chat].attachmentCount += static_cast<std::int64_t>(message.attachments.size());
    }
    /// Everything but the paths and what is on the disk.
    void fill(SampleReport& report) const;

private:
    struct ChatTally {
        std::string guid;
        std::string title;
        std::int64_t attachmentCount = 0;
    };

    std::map<std::int64_t, ChatTally> chats_;
    std::int64_t messageCount_ = 0;
    std::int64_t reactionCount_ = 0;
};

} // namespace quillbook::sample
