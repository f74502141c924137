#include "core/text/CaseInsensitiveSearch.h"

#include <chrono>
#include <string>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

struct SearchCase {
    const char* name;
    const char* locale;
    std::string wanted;
    std::string text;
    bool isFound;
};

class Search : public testing::TestWithParam<SearchCase> {};

TEST_P(Search, findsWhatAPersonWould) {
    const CaseInsensitiveSearch search(GetParam().wanted, GetParam().locale);
    EXPECT_EQ(search.isFoundIn(GetParam().text), GetParam().isFound);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Search,
    testing::Values(SearchCase{"same", "en_US.UTF-8", "Ada", "Ada Quill", true},
                    SearchCase{"otherCase", "en_US.UTF-8", "aDA", "Ada Quill", true},
                    SearchCase{"atTheEnd", "en_US.UTF-8", "QUILL", "Ada Quill", true},
                    SearchCase{"withinAWord", "en_US.UTF-8", "uil", "Ada Quill", true},
                    SearchCase{"acrossABlank", "en_US.UTF-8", "a q", "Ada Quill", true},
                    SearchCase{"notThere", "en_US.UTF-8", "Ben", "Ada Quill", false},
                    SearchCase{"longerThanTheText", "en_US.UTF-8", "Ada Quill Jr.", "Ada Quill", false},
                    SearchCase{"emptyWanted", "en_US.UTF-8", "", "Ada", false},
                    SearchCase{"emptyText", "en_US.UTF-8", "Ada", "", false},
                    SearchCase{"bothEmpty", "en_US.UTF-8", "", "", false},
                    SearchCase{"umlautInOtherCase", "de_DE.UTF-8", "ÄRGER", "kein Ärger", true},
                    SearchCase{"smallUmlautInACapitalText", "de_DE.UTF-8", "ärger", "KEIN ÄRGER", true},
                    SearchCase{"accentsCount", "en_US.UTF-8", "cafe", "Café", false},
                    SearchCase{"accentsCountTheOtherWay", "en_US.UTF-8", "café", "Cafe", false},
                    SearchCase{"umlautIsNoPlainLetter", "de_DE.UTF-8", "a", "ÄÖÜ", false},
                    SearchCase{"composedAndDecomposedAreOne", "en_US.UTF-8", "caf\u00E9", "CAFE\u0301", true},
                    SearchCase{"sharpSInCapitals", "de_DE.UTF-8", "straße", "STRAẞE", true},
                    SearchCase{"sharpSInItself", "de_DE.UTF-8", "ß", "Straße", true},
                    SearchCase{"cyrillic", "ru_RU.UTF-8", "привет", "ПРИВЕТ!", true},
                    SearchCase{"greekFinalSigma", "el_GR.UTF-8", "ΟΔΟΣ", "οδος", true},
                    SearchCase{"digits", "en_US.UTF-8", "555", "+1 415 555 0123", true},
                    SearchCase{"punctuationCounts", "en_US.UTF-8", "415555", "+1 415-555 0123", false},
                    SearchCase{"emoji", "en_US.UTF-8", "😀", "hello 😀", true},
                    SearchCase{"otherEmoji", "en_US.UTF-8", "😀", "hello 😁", false},
                    SearchCase{"noLocale", "C", "ADA", "ada", true},
                    SearchCase{"localeOfNowhere", "xx_YY", "ADA", "ada", true},
                    SearchCase{"invalidUTF8", "en_US.UTF-8", "ada", "\xFF\xC0 Ada \xE2\x82", true}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(CaseInsensitiveSearch, looksInManyTexts) {
    const CaseInsensitiveSearch search("quill", "en_US.UTF-8");
    for (int round = 0; round < 1'000; ++round) {
        ASSERT_TRUE(search.isFoundIn("Person " + std::to_string(round) + " QUILL"));
        ASSERT_FALSE(search.isFoundIn("Person " + std::to_string(round)));
    }
}

TEST(CaseInsensitiveSearch, aMegabyteTakesNoMoreThanSeconds) {
    const CaseInsensitiveSearch search("aaaaaaaaab", "en_US.UTF-8");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(search.isFoundIn(std::string(1'000'000, 'a')));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

TEST(CaseInsensitiveSearch, wantedTextOfInvisibleCharactersEndsTheSearch) {
    for (const char* invisible : {"\u200D", "\u00AD", "\x01", "\uFEFF"}) {
        const CaseInsensitiveSearch search(invisible, "en_US.UTF-8");
        EXPECT_FALSE(search.isFoundIn("Ada"));
    }
}

} // namespace
} // namespace quillbook
