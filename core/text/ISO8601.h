#pragma once

#include "core/text/Date.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillbook {

/// Internet form of RFC 3339 in UTC to whole seconds, as in 2024-05-01T12:34:56Z; the fraction is dropped.
/// Years have at least four digits; those before year 0 carry a minus sign.
std::string iso8601Seconds(Date date);

/// As `iso8601Seconds`, with exactly three digits of the second's fraction, which are cut, not rounded.
std::string iso8601Milliseconds(Date date);

/// Reads the form that `iso8601Seconds` writes. Nothing for any other text and for days or hours that do not
/// exist.
std::optional<Date> parseISO8601Seconds(std::string_view text);

} // namespace quillbook
