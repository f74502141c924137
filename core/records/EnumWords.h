#pragma once

#include "core/records/ArchiveConversation.h"
#include "core/records/ExportProgress.h"

#include <optional>
#include <string_view>

namespace quillbook {

// The word of an enumerator is its name; this is what stands in JSON and in transcripts.
std::string_view rawValue(ExportStage stage);
std::string_view rawValue(ReactionKind kind);
std::string_view rawValue(MessagePayloadState state);
std::string_view rawValue(AttachmentAvailability availability);

/// The enumerator with exactly this word, letter case included; nothing where there is none.
template <typename Enumeration>
std::optional<Enumeration> fromRawValue(std::string_view word);

} // namespace quillbook
