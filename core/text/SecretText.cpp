#include "core/text/SecretText.h"

#include <cstring>

namespace quillbook {

void overwrite(std::string& text) {
    text.resize(text.capacity()); // Within what is reserved, so nothing moves.
    explicit_bzero(text.data(), text.size());
    text.clear();
}

SecretText::SecretText(std::string_view text)
    : text_(new std::string(text), [](std::string* owned) {
          overwrite(*owned);
          delete owned;
      }) {}

} // namespace quillbook
