#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quillbook {

/// Strict UTF-8 of RFC 3629: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isValidUTF8(std::string_view bytes);

/// The text with every ill-formed sequence replaced by U+FFFD, one for each maximal subpart (Unicode,
/// section 3.9).
std::string repairedUTF8(std::string_view bytes);

/// Takes the first Unicode scalar off `rest`, which must not be empty; U+FFFD for an ill-formed sequence.
char32_t takeScalar(std::string_view& rest);

void appendScalar(std::string& text, char32_t scalar);

} // namespace quillbook
