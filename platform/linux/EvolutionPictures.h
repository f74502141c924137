#pragma once

#include "core/records/ConversationSummary.h"

#include <optional>
#include <string>

namespace quillbook {

/// Evolution Data Server keeps the pictures of its contacts beside its databases and puts "file:" URIs into
/// the contacts. Gives such a file of at most 16 MiB; nothing for a file anywhere else, wherever links lead,
/// since a contact can come from a stranger.
std::optional<Data> evolutionPicture(const std::string& uri);

} // namespace quillbook
