#pragma once

#include "tools/sample/LibraryRows.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillbook::sample {

/// One conversation of the written library.
struct ConversationPlan {
    std::string identifier; ///< chat_identifier; for one person the person's address is taken.
    std::string displayName;
    bool isGroup = false;
    std::string service = "iMessage";
    std::vector<std::string> members; ///< Keys of people, in the order of the script's letters A, B, …
    std::vector<std::string> absent;  ///< Those of them who have no place in the chat any more.
    std::string_view script;
    std::string_view smallTalk; ///< More small talk besides the script's own.
    std::int64_t share = 0;     ///< Of the messages, relative to the other conversations.
    int attachmentShare = 0;    ///< Of the attachments that no script asks for.
};

const std::vector<ConversationPlan>& conversationPlans();

} // namespace quillbook::sample
