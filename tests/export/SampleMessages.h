#pragma once

#include "core/records/ArchiveConversation.h"
#include "core/text/ISO8601.h"

#include <string>
#include <string_view>
#include <utility>

namespace quillbook::test {

/// As in "2026-11-15T19:48:57Z".
inline Date dateAt(std::string_view iso8601) {
    return parseISO8601Seconds(iso8601).value();
}

inline ArchiveParticipant participant(std::string address, std::optional<std::string> name = std::nullopt) {
    ArchiveParticipant record;
    record.id = "participant-" + address;
    record.address = std::move(address);
    record.displayName = std::move(name);
    return record;
}

/// A message of the user's own, on an evening in November 2026.
inline ArchiveMessage message(std::string id, std::optional<std::string> text = std::nullopt,
                              std::string_view date = "2026-11-15T19:48:57Z") {
    ArchiveMessage record;
    record.guid = "guid-" + id;
    record.id = {std::move(id)};
    record.date = dateAt(date);
    record.isFromMe = true;
    record.text = std::move(text);
    return record;
}

inline ArchiveMessage messageFrom(const ArchiveParticipant& sender, std::string id,
                                  std::optional<std::string> text = std::nullopt,
                                  std::string_view date = "2026-11-15T19:48:57Z") {
    ArchiveMessage record = message(std::move(id), std::move(text), date);
    record.isFromMe = false;
    record.senderID = sender.id;
    return record;
}

inline ArchiveReaction reaction(ReactionKind kind, bool isRemoved = false) {
    ArchiveReaction record;
    record.id = "reaction-1";
    record.kind = kind;
    record.isRemoved = isRemoved;
    return record;
}

/// One without a path is missing.
inline ArchiveAttachment attachment(std::string name, std::optional<std::string> archivePath = std::nullopt) {
    ArchiveAttachment record;
    record.id = {"attachment-of-" + name};
    record.displayName = std::move(name);
    record.availability = archivePath ? AttachmentAvailability::available : AttachmentAvailability::missing;
    record.archivePath = std::move(archivePath);
    return record;
}

inline ArchiveConversation conversation(std::vector<ArchiveMessage> messages = {},
                                        std::vector<ArchiveParticipant> participants = {}) {
    ArchiveConversation record;
    record.id = {"7"};
    record.guid = "chat-7";
    record.title = "Alma Birkeland";
    record.generatedAt = dateAt("2026-12-24T17:05:09Z");
    record.sourceMessageCount = static_cast<std::int64_t>(messages.size());
    record.sourceSystemVersion = "Debian GNU/Linux 12";
    record.messages = std::move(messages);
    record.participants = std::move(participants);
    return record;
}

} // namespace quillbook::test
