#pragma once

#include <string>
#include <string_view>

#include <fmt/format.h>

namespace quillbook {

/// Words for the user in the current language; the key is the English text, which also stands in where no
/// translation exists.
std::string localized(std::string_view english);

/// As `localized`, for a text with `{}` placeholders that take `values` in order.
template <typename... Values>
std::string localizedFormat(std::string_view english, const Values&... values) {
    return fmt::format(fmt::runtime(localized(english)), values...);
}

} // namespace quillbook
