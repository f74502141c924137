#pragma once

#include <string>
#include <vector>

namespace quillbook {

/// POSIX name of the locale of the user's dates and times, as in "de_DE.UTF-8": the first of LC_ALL, LC_TIME
/// and LANG that is set; "C" where none is.
std::string userTimeLocale();

/// POSIX name of the locale of the user's numbers: the first of LC_ALL, LC_NUMERIC and LANG; "C" where none
/// is set.
std::string userNumberLocale();

/// POSIX name of the locale of the user's words and comparisons: the first of LC_ALL, LC_COLLATE and LANG;
/// "C" where none is set.
std::string userCollationLocale();

/// The user's languages as BCP 47 tags, most wanted first: LANGUAGE where it is set, else LC_ALL, LC_MESSAGES
/// or LANG; empty where none is.
std::vector<std::string> preferredLanguages();

} // namespace quillbook
