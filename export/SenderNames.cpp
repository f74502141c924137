#include "export/SenderNames.h"

#include "core/text/Localization.h"

namespace quillbook {

const std::string& participantName(const ArchiveParticipant& participant) {
    return participant.displayName ? *participant.displayName : participant.address;
}

SenderNames::SenderNames(const std::vector<ArchiveParticipant>& participants) {
    names_.reserve(participants.size());
    for (const ArchiveParticipant& participant : participants) {
        names_.emplace(participant.id, &participantName(participant));
    }
}

std::string_view SenderNames::sender(const ArchiveMessage& message) const {
    if (message.isFromMe) return "Me";
    const std::string* name = nameOfSender(message);
    return name != nullptr ? std::string_view(*name) : "Unknown";
}

std::string SenderNames::localizedSender(const ArchiveMessage& message) const {
    if (message.isFromMe) return localized("Me");
    const std::string* name = nameOfSender(message);
    return name != nullptr ? *name : localized("Unknown");
}

const std::string* SenderNames::nameOfSender(const ArchiveMessage& message) const {
    const std::string_view id = message.senderID ? std::string_view(*message.senderID) : std::string_view();
    const auto found = names_.find(id);
    return found != names_.end() ? found->second : nullptr;
}

} // namespace quillbook
