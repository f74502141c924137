#pragma once

#include <string>
#include <string_view>

namespace quillbook {

/// What stands for a person without a picture: the first character of the first and of the last word, in
/// capitals, of the words that begin with a letter. Empty for a text with "@" in it or without such a word:
/// an address gives no initials. Scripts without spaces give one character.
std::string initials(std::string_view name);

} // namespace quillbook
