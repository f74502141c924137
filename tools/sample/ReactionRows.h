#pragma once

#include "tools/sample/LibraryRows.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillbook::sample {

/// A reaction with an emoji of the sender's choice.
inline constexpr std::int64_t emojiReactionType = 2006;

/// associated_message_type for "love", "like", "dislike", "laugh", "emph", "question", and for taking each
/// back ("unlove").
std::optional<std::int64_t> reactionType(std::string_view name);

/// The words that Messages keeps in the row of a reaction, such as: Loved “See you at nine”.
std::string reactionText(std::int64_t type, std::string_view emoji, const MessageRow& target);

} // namespace quillbook::sample
