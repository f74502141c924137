#include "export/ArchiveLanguage.h"

#include "core/text/UnicodeCategories.h"

#include <algorithm>
#include <array>
#include <optional>

namespace quillbook {
namespace {

// Among the regional forms of one language the first is taken for all others.
constexpr std::array<std::string_view, 15> languages = {"en", "es-MX", "es-ES",   "pt-BR", "pt-PT",
                                                        "ja", "de",    "zh-Hans", "fr",    "ko",
                                                        "it", "ru",    "id",      "hi",    "uk"};

/// The first piece between hyphens that is not empty.
std::string_view primaryPiece(std::string_view tag) {
    tag.remove_prefix(std::min(tag.find_first_not_of('-'), tag.size()));
    return tag.substr(0, tag.find('-'));
}

template <typename Predicate>
std::optional<std::string_view> firstLanguage(Predicate matches) {
    const auto found = std::find_if(languages.begin(), languages.end(),
                                    [&](auto language) { return matches(lowercased(language)); });
    if (found == languages.end()) return std::nullopt;
    return *found;
}

std::optional<std::string_view> languageFor(const std::string& preferred) {
    const std::string tag = lowercased(preferred);
    if (const auto exact = firstLanguage([&](const std::string& language) { return language == tag; }))
        return exact;
    const std::string primary(primaryPiece(tag));
    return firstLanguage([&](const std::string& language) {
        return language == primary || language.starts_with(primary + '-');
    });
}

} // namespace

std::string_view pickArchiveLanguage(std::span<const std::string> preferredLanguages) {
    for (const std::string& preferred : preferredLanguages) {
        if (const auto language = languageFor(preferred)) return *language;
    }
    return languages.front();
}

} // namespace quillbook
