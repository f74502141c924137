#pragma once

#include "core/records/ArchiveConversation.h"

#include <string>
#include <string_view>
#include <unordered_map>

namespace quillbook {

/// What a transcript calls a participant: the name, or else the address.
const std::string& participantName(const ArchiveParticipant& participant);

/// The words for a message's sender. Keeps views into the participants, which must outlive it unchanged.
class SenderNames {
public:
    /// Of two participants with the same `id` the first counts.
    explicit SenderNames(const std::vector<ArchiveParticipant>& participants);

    /// "Me", a participant's name, or "Unknown", as a file format has them.
    std::string_view sender(const ArchiveMessage& message) const;
    /// The same with "Me" and "Unknown" in the user's language.
    std::string localizedSender(const ArchiveMessage& message) const;

private:
    /// Null for a sender that is no participant.
    const std::string* nameOfSender(const ArchiveMessage& message) const;

    std::unordered_map<std::string_view, const std::string*> names_;
};

} // namespace quillbook
