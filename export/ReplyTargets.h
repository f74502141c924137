#pragma once

#include "core/records/ArchiveConversation.h"

#include <string_view>
#include <unordered_map>
#include <vector>

namespace quillbook {

/// The messages that others reply to, by their guid. It knows the asked-for ones alone, so it is small where
/// replies are few. Keeps pointers into the messages, which must outlive it unchanged.
class ReplyTargets {
public:
    explicit ReplyTargets(const std::vector<ArchiveMessage>& messages);

    /// The last message with this guid, wherever it stands; null where there is none or no message replies to
    /// it.
    const ArchiveMessage* find(std::string_view guid) const;

private:
    std::unordered_map<std::string_view, const ArchiveMessage*> targets_;
};

} // namespace quillbook
