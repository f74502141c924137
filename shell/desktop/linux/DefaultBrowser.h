#pragma once

#include <filesystem>
#include <optional>

namespace quillbook {

/// The desktop entry of the user's browser: what the lists of the XDG MIME associations name
/// for "x-scheme-handler/https", defaults before additions before what is merely installed. Nothing where no
/// list names an entry that exists.
std::optional<std::filesystem::path> defaultBrowserEntry();

} // namespace quillbook
