#pragma once

#include "core/records/ArchiveConversation.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillbook {

/// Whether a row of this `associated_message_type` is a reaction to a message and no message itself.
bool isReactionType(std::optional<std::int64_t> type);

/// What a reaction row's type says: 2000 to 2005 add the six kinds, 3000 to 3005 take them back; all else is
/// unknown.
ReactionKind reactionKind(std::int64_t type);
bool isReactionRemoval(std::int64_t type);

/// The guid of the message that an `associated_message_guid` names: "p:0/GUID" and "bp:GUID" both name GUID.
/// Nothing for an absent or empty text. The part of the message that the first form numbers is dropped.
std::optional<std::string_view> reactionTargetGUID(std::optional<std::string_view> associatedGUID);

} // namespace quillbook
