#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillbook {

// User-perceived characters are the extended grapheme clusters of Unicode Standard Annex #29.

/// The longest front of `text` that consists of whole grapheme clusters and has at most `maximumBytes` bytes
/// of UTF-8.
std::string_view graphemePrefix(std::string_view text, std::size_t maximumBytes);

/// The text where it has at most `maximumBytes` bytes, else as much of its front as leaves room for an
/// ellipsis within them. `maximumBytes` is 3 at the least.
std::string shortened(std::string_view text, std::size_t maximumBytes);

/// The first grapheme cluster; empty for an empty text.
std::string_view firstGrapheme(std::string_view text);

} // namespace quillbook
