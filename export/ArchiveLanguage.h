#pragma once

#include <span>
#include <string>
#include <string_view>

namespace quillbook {

/// The language that an album's page is marked with: the best of those the website speaks for these BCP 47
/// tags, most wanted first; "en" where none fits.
std::string_view pickArchiveLanguage(std::span<const std::string> preferredLanguages);

} // namespace quillbook
