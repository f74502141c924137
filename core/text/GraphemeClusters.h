#pragma once

#include <cstddef>
#include <string_view>

namespace quillbook {

// User-perceived characters are the extended grapheme clusters of Unicode Standard Annex #29.

/// The longest front of `text` that consists of whole grapheme clusters and has at most `maximumBytes` bytes
/// of UTF-8.
std::string_view graphemePrefix(std::string_view text, std::size_t maximumBytes);

/// The first grapheme cluster; empty for an empty text.
std::string_view firstGrapheme(std::string_view text);

} // namespace quillbook
