#pragma once

#include <string>

#include <unicode/locid.h>

namespace quillbook {

/// A POSIX locale name as ICU's locale; "C" and "POSIX" read as American English, as desktops show it.
inline icu::Locale icuLocale(const std::string& posixName) {
    const std::string name = posixName.substr(0, posixName.find('.'));
    if (name.empty() || name == "C" || name == "POSIX") return icu::Locale::getUS();
    return icu::Locale::createCanonical(posixName.c_str());
}

} // namespace quillbook
