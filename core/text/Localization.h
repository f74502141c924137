#pragma once

#include <functional>
#include <string>
#include <string_view>

#include <fmt/format.h>

namespace quillbook {

/// Words for the user in the current language; the key is the English text, which also stands in where no
/// translation exists.
std::string localized(std::string_view english);

/// What `localized` answers with from now on; none brings the English back. For the start of a process: no
/// other thread may be looking words up.
void useTranslation(std::function<std::string(std::string_view english)> translation);

/// As `localized`, for a text with `{}` placeholders that take `values` in order.
template <typename... Values>
std::string localizedFormat(std::string_view english, const Values&... values) {
    return fmt::format(fmt::runtime(localized(english)), values...);
}

} // namespace quillbook
