#pragma once

#include "core/records/ConversationSummary.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quillbook {

// RFC 4648, section 4: the standard alphabet with padding.
std::string base64(std::span<const std::uint8_t> bytes);

/// Nothing where the text is not exactly what `base64` could have written.
std::optional<Data> decodeBase64(std::string_view text);

} // namespace quillbook
