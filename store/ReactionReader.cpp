#include "store/ReactionReader.h"

namespace quillbook {
namespace {

constexpr std::int64_t firstAddition = 2'000;
constexpr std::int64_t firstRemoval = 3'000;

} // namespace

bool isReactionType(std::optional<std::int64_t> type) {
    return type && *type >= firstAddition;
}

bool isReactionRemoval(std::int64_t type) {
    return type >= firstRemoval;
}

ReactionKind reactionKind(std::int64_t type) {
    const std::int64_t addition = isReactionRemoval(type) ? type - (firstRemoval - firstAddition) : type;
    switch (addition - firstAddition) {
    case 0:
        return ReactionKind::loved;
    case 1:
        return ReactionKind::liked;
    case 2:
        return ReactionKind::disliked;
    case 3:
        return ReactionKind::laughed;
    case 4:
        return ReactionKind::emphasized;
    case 5:
        return ReactionKind::questioned;
    default:
        return ReactionKind::unknown;
    }
}

std::optional<std::string_view> reactionTargetGUID(std::optional<std::string_view> associatedGUID) {
    if (!associatedGUID || associatedGUID->empty()) return std::nullopt;
    std::string_view target = *associatedGUID;
    // The last piece between slashes that is not empty; a text of slashes alone has none and stays as it is.
    if (const auto last = target.find_last_not_of('/'); last != std::string_view::npos) {
        target = target.substr(0, last + 1);
        target.remove_prefix(target.rfind('/') + 1);
    }
    constexpr std::string_view balloonPart = "bp:";
    if (target.substr(0, balloonPart.size()) == balloonPart) target.remove_prefix(balloonPart.size());
    return target;
}

} // namespace quillbook
