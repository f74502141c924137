#pragma once

#include <string>
#include <string_view>

namespace quillbook {

/// General category Cc.
bool isControl(char32_t scalar);
/// General category Cc or Cf: what never belongs in a file's name.
bool isControlOrFormat(char32_t scalar);
/// General categories L*, M* and N*.
bool isAlphanumeric(char32_t scalar);
/// General categories L*.
bool isLetter(char32_t scalar);
/// General categories N*.
bool isNumber(char32_t scalar);
/// General categories Z*, and U+0009 to U+000D and U+0085.
bool isWhitespaceOrNewline(char32_t scalar);

/// Without the white space and line breaks at both ends; a part of `text`.
std::string_view trimmedWhitespace(std::string_view text);
/// Without blanks and full stops at both ends, nothing else; a part of `text`.
std::string_view trimmedBlanksAndPoints(std::string_view text);
/// In lower case by Unicode's default rules, the same in every locale.
std::string lowercased(std::string_view text);

} // namespace quillbook
