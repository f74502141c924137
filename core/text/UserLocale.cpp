#include "core/text/UserLocale.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <string_view>

namespace quillbook {
namespace {

/// Locale categories are looked up as POSIX.1 section 8.2 tells: the first variable that is set and not
/// empty.
std::string firstSet(std::initializer_list<const char*> variables) {
    for (const char* variable : variables) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') return value;
    }
    return "C";
}

bool isUntranslated(std::string_view locale) {
    return locale.empty() || locale == "C" || locale == "POSIX" || locale.substr(0, 2) == "C.";
}

/// "pt_BR.UTF-8@euro" becomes "pt-BR"; Chinese is told apart by script, as its written forms are.
std::string languageTag(std::string_view locale) {
    std::string tag(locale.substr(0, locale.find_first_of(".@")));
    std::replace(tag.begin(), tag.end(), '_', '-');
    if (tag == "zh-CN" || tag == "zh-SG") return "zh-Hans";
    if (tag == "zh-TW" || tag == "zh-HK" || tag == "zh-MO") return "zh-Hant";
    return tag;
}

} // namespace

std::string userTimeLocale() {
    return firstSet({"LC_ALL", "LC_TIME", "LANG"});
}

std::string userNumberLocale() {
    return firstSet({"LC_ALL", "LC_NUMERIC", "LANG"});
}

std::string userCollationLocale() {
    return firstSet({"LC_ALL", "LC_COLLATE", "LANG"});
}

std::vector<std::string> preferredLanguages() {
    const std::string messages = firstSet({"LC_ALL", "LC_MESSAGES", "LANG"});
    if (isUntranslated(messages)) return {};
    // GNU gettext: LANGUAGE is a list parted by colons, and counts only where the locale is not "C".
    const char* list = std::getenv("LANGUAGE");
    std::string_view rest =
        list != nullptr && *list != '\0' ? std::string_view(list) : std::string_view(messages);
    std::vector<std::string> tags;
    while (!rest.empty()) {
        const auto end = std::min(rest.find(':'), rest.size());
        if (const auto locale = rest.substr(0, end); !isUntranslated(locale))
            tags.push_back(languageTag(locale));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return tags;
}

} // namespace quillbook
