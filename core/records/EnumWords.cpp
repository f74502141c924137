#include "core/records/EnumWords.h"

#include <algorithm>
#include <array>

namespace quillbook {
namespace {

// In the order of the enumerators.
constexpr std::array<std::string_view, 5> stageWords = {"preparing", "readingMessages", "copyingAttachments",
                                                        "writingArchive", "finalizing"};
constexpr std::array<std::string_view, 8> reactionWords = {"loved",      "liked",      "disliked", "laughed",
                                                           "emphasized", "questioned", "custom",   "unknown"};
constexpr std::array<std::string_view, 3> payloadWords = {"decoded", "partiallyDecoded", "unsupported"};
constexpr std::array<std::string_view, 3> availabilityWords = {"available", "missing", "unreadable"};

template <typename Enumeration, std::size_t count>
std::optional<Enumeration> find(const std::array<std::string_view, count>& words, std::string_view word) {
    const auto found = std::find(words.begin(), words.end(), word);
    if (found == words.end()) return std::nullopt;
    return static_cast<Enumeration>(found - words.begin());
}

} // namespace

std::string_view rawValue(ExportStage stage) {
    return stageWords[static_cast<std::size_t>(stage)];
}

std::string_view rawValue(ReactionKind kind) {
    return reactionWords[static_cast<std::size_t>(kind)];
}

std::string_view rawValue(MessagePayloadState state) {
    return payloadWords[static_cast<std::size_t>(state)];
}

std::string_view rawValue(AttachmentAvailability availability) {
    return availabilityWords[static_cast<std::size_t>(availability)];
}

template <>
std::optional<ExportStage> fromRawValue(std::string_view word) {
    return find<ExportStage>(stageWords, word);
}

template <>
std::optional<ReactionKind> fromRawValue(std::string_view word) {
    return find<ReactionKind>(reactionWords, word);
}

template <>
std::optional<MessagePayloadState> fromRawValue(std::string_view word) {
    return find<MessagePayloadState>(payloadWords, word);
}

template <>
std::optional<AttachmentAvailability> fromRawValue(std::string_view word) {
    return find<AttachmentAvailability>(availabilityWords, word);
}

} // namespace quillbook
