#include "tools/sample/ReactionRows.h"

#include <array>

namespace quillbook::sample {
namespace {

struct ReactionWords {
    std::string_view name;
    std::string_view given;
    std::string_view removed;
};

constexpr std::array<ReactionWords, 6> reactions = {
    {{"love", "Loved", "Removed a heart from"},
     {"like", "Liked", "Removed a like from"},
     {"dislike", "Disliked", "Removed a dislike from"},
     {"laugh", "Laughed at", "Removed a laugh from"},
     {"emph", "Emphasized", "Removed an exclamation from"},
     {"question", "Questioned", "Removed a question mark from"}}};

std::string quoted(const MessageRow& target) {
    if (target.text.empty()) return target.attachments.empty() ? "a message" : "an attachment";
    return "\u201C" + target.text + "\u201D";
}

} // namespace

std::optional<std::int64_t> reactionType(std::string_view name) {
    const bool isRemoval = name.starts_with("un");
    const std::string_view kind = isRemoval ? name.substr(2) : name;
    for (std::size_t index = 0; index < reactions.size(); ++index) {
        if (reactions[index].name == kind)
            return (isRemoval ? 3000 : 2000) + static_cast<std::int64_t>(index);
    }
    return std::nullopt;
}

std::string reactionText(std::int64_t type, std::string_view emoji, const MessageRow& target) {
    if (type == emojiReactionType) return "Reacted " + std::string(emoji) + " to " + quoted(target);
    const ReactionWords& words = reactions[static_cast<std::size_t>(type % 1000) % reactions.size()];
    return std::string(type >= 3000 ? words.removed : words.given) + " " + quoted(target);
}

} // namespace quillbook::sample
