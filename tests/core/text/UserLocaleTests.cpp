#include "core/text/UserLocale.h"

#include <array>
#include <cstdlib>
#include <map>
#include <optional>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

constexpr std::array<const char*, 7> variables = {"LC_ALL",      "LC_TIME", "LC_NUMERIC", "LC_COLLATE",
                                                  "LC_MESSAGES", "LANG",    "LANGUAGE"};

using Settings = std::map<std::string, std::string>;

/// An environment with these locale variables alone; the old one comes back with its end.
class Environment {
public:
    explicit Environment(const Settings& settings) {
        for (std::size_t index = 0; index < variables.size(); ++index) {
            if (const char* value = std::getenv(variables[index]); value != nullptr) old_[index] = value;
            ::unsetenv(variables[index]);
        }
        for (const auto& [name, value] : settings)
            ::setenv(name.c_str(), value.c_str(), 1);
    }
    ~Environment() {
        for (std::size_t index = 0; index < variables.size(); ++index) {
            if (old_[index]) {
                ::setenv(variables[index], old_[index]->c_str(), 1);
            } else {
                ::unsetenv(variables[index]);
            }
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    std::array<std::optional<std::string>, variables.size()> old_;
};

struct LocaleCase {
    const char* name;
    Settings settings;
    const char* time;
    const char* collation;
};

class UserLocales : public testing::TestWithParam<LocaleCase> {};

TEST_P(UserLocales, areTheFirstThatAreSet) {
    const Environment environment(GetParam().settings);
    EXPECT_EQ(userTimeLocale(), GetParam().time);
    EXPECT_EQ(userCollationLocale(), GetParam().collation);
}

INSTANTIATE_TEST_SUITE_P(
    Table, UserLocales,
    testing::Values(
        LocaleCase{"nothingSet", {}, "C", "C"},
        LocaleCase{"langAlone", {{"LANG", "de_DE.UTF-8"}}, "de_DE.UTF-8", "de_DE.UTF-8"},
        LocaleCase{"ownCategories",
                   {{"LANG", "en_US.UTF-8"}, {"LC_TIME", "de_DE.UTF-8"}, {"LC_COLLATE", "sv_SE.UTF-8"}},
                   "de_DE.UTF-8",
                   "sv_SE.UTF-8"},
        LocaleCase{"allBeforeTheRest",
                   {{"LANG", "en_US.UTF-8"}, {"LC_TIME", "de_DE.UTF-8"}, {"LC_ALL", "fr_FR.UTF-8"}},
                   "fr_FR.UTF-8",
                   "fr_FR.UTF-8"},
        LocaleCase{"emptyCountsAsUnset",
                   {{"LC_ALL", ""}, {"LC_TIME", ""}, {"LANG", "de_DE.UTF-8"}},
                   "de_DE.UTF-8",
                   "de_DE.UTF-8"},
        LocaleCase{"messagesDoNotCount", {{"LC_MESSAGES", "de_DE.UTF-8"}}, "C", "C"}),
    [](const auto& test) { return std::string(test.param.name); });

struct NumberLocaleCase {
    const char* name;
    Settings settings;
    const char* locale;
};

class NumberLocale : public testing::TestWithParam<NumberLocaleCase> {};

TEST_P(NumberLocale, isTheFirstThatIsSet) {
    const Environment environment(GetParam().settings);
    EXPECT_EQ(userNumberLocale(), GetParam().locale);
}

INSTANTIATE_TEST_SUITE_P(
    Table, NumberLocale,
    testing::Values(
        NumberLocaleCase{"nothingSet", {}, "C"},
        NumberLocaleCase{
            "ownCategory", {{"LANG", "en_US.UTF-8"}, {"LC_NUMERIC", "de_DE.UTF-8"}}, "de_DE.UTF-8"},
        NumberLocaleCase{
            "allBeforeTheRest", {{"LC_ALL", "fr_FR.UTF-8"}, {"LC_NUMERIC", "de_DE.UTF-8"}}, "fr_FR.UTF-8"},
        NumberLocaleCase{
            "timesDoNotCount", {{"LANG", "en_US.UTF-8"}, {"LC_TIME", "de_DE.UTF-8"}}, "en_US.UTF-8"}),
    [](const auto& test) { return std::string(test.param.name); });

struct LanguagesCase {
    const char* name;
    Settings settings;
    std::vector<std::string> tags;
};

class PreferredLanguages : public testing::TestWithParam<LanguagesCase> {};

TEST_P(PreferredLanguages, areInTheOrderOfWanting) {
    const Environment environment(GetParam().settings);
    EXPECT_EQ(preferredLanguages(), GetParam().tags);
}

INSTANTIATE_TEST_SUITE_P(
    Table, PreferredLanguages,
    testing::Values(
        LanguagesCase{"nothingSet", {}, {}}, LanguagesCase{"langAlone", {{"LANG", "de_DE.UTF-8"}}, {"de-DE"}},
        LanguagesCase{"messagesBeforeLang", {{"LANG", "en_US.UTF-8"}, {"LC_MESSAGES", "de_AT"}}, {"de-AT"}},
        LanguagesCase{
            "listBeforeAll", {{"LC_ALL", "de_DE.UTF-8"}, {"LANGUAGE", "nn:nb_NO:en"}}, {"nn", "nb-NO", "en"}},
        LanguagesCase{"listDoesNotCountWithoutALanguage", {{"LANG", "C.UTF-8"}, {"LANGUAGE", "de"}}, {}},
        LanguagesCase{"listDoesNotCountWithoutALocale", {{"LANGUAGE", "de"}}, {}},
        LanguagesCase{"emptyEntriesDropOut", {{"LANG", "de_DE"}, {"LANGUAGE", ":de::C:en:"}}, {"de", "en"}},
        LanguagesCase{"modifierIsCutOff", {{"LANG", "de_DE.UTF-8@euro"}}, {"de-DE"}},
        LanguagesCase{"simplifiedChinese", {{"LANG", "zh_CN.UTF-8"}}, {"zh-Hans"}},
        LanguagesCase{"traditionalChinese", {{"LANG", "zh_TW.UTF-8"}}, {"zh-Hant"}},
        LanguagesCase{"posix", {{"LANG", "POSIX"}}, {}}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace quillbook
