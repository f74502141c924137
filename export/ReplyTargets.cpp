#include "export/ReplyTargets.h"

namespace quillbook {

ReplyTargets::ReplyTargets(const std::vector<ArchiveMessage>& messages) {
    for (const ArchiveMessage& message : messages) {
        if (message.replyToGUID) targets_.emplace(*message.replyToGUID, nullptr);
    }
    if (targets_.empty()) return;
    for (const ArchiveMessage& message : messages) {
        if (const auto target = targets_.find(message.guid); target != targets_.end())
            target->second = &message;
    }
}

const ArchiveMessage* ReplyTargets::find(std::string_view guid) const {
    const auto target = targets_.find(guid);
    return target != targets_.end() ? target->second : nullptr;
}

} // namespace quillbook
