#include "core/text/GraphemeClusters.h"
#include "core/text/UTF8.h"

#include <chrono>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

struct FirstCase {
    const char* name;
    std::string text;
    std::string first;
};

class FirstGrapheme : public testing::TestWithParam<FirstCase> {};

TEST_P(FirstGrapheme, isWhatAPersonSeesFirst) {
    EXPECT_EQ(firstGrapheme(GetParam().text), GetParam().first);
}

TEST_P(FirstGrapheme, fitsWhereItsBytesDo) {
    EXPECT_EQ(graphemePrefix(GetParam().text, GetParam().first.size()), GetParam().first);
}

TEST_P(FirstGrapheme, isNeverParted) {
    for (std::size_t bytes = 0; bytes < GetParam().first.size(); ++bytes) {
        EXPECT_EQ(graphemePrefix(GetParam().text, bytes), "") << bytes;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, FirstGrapheme,
    testing::Values(FirstCase{"letter", "abc", "a"}, //
                    FirstCase{"single", "a", "a"},   //
                    FirstCase{"empty", "", ""},      //
                    FirstCase{"twoBytes", "éa", "é"}, FirstCase{"combiningMark", "e\u0301a", "e\u0301"},
                    FirstCase{"severalMarks", "e\u0301\u0323\u0308z", "e\u0301\u0323\u0308"},
                    FirstCase{"carriageReturnAndLineFeed", "\r\na", "\r\n"},
                    FirstCase{"lineFeedAndCarriageReturn", "\n\r", "\n"}, FirstCase{"emoji", "😀😀", "😀"},
                    FirstCase{"emojiWithSkinTone", "👍🏽!", "👍🏽"},
                    FirstCase{"family", "👨‍👩‍👧‍👦x", "👨‍👩‍👧‍👦"},
                    FirstCase{"heartWithSelector", "❤️x", "❤️"},                         //
                    FirstCase{"keycap", "1️⃣2", "1️⃣"}, FirstCase{"flag", "🇳🇵🇩🇪", "🇳🇵"}, //
                    FirstCase{"flagOfARegion", "🏴󠁧󠁢󠁳󠁣󠁴󠁿x",
                              "🏴󠁧󠁢󠁳󠁣󠁴󠁿"},
                    FirstCase{"hangulOfParts", "\u1112\u1161\u11ABx", "\u1112\u1161\u11AB"},
                    FirstCase{"devanagariVowelSign", "नि ", "नि"}, FirstCase{"invalidByte", "\xFFz", "\xFF"}),
    [](const auto& test) { return std::string(test.param.name); });

struct PrefixCase {
    const char* name;
    std::string text;
    std::size_t maximumBytes;
    std::string prefix;
};

class GraphemePrefix : public testing::TestWithParam<PrefixCase> {};

TEST_P(GraphemePrefix, isWhole) {
    EXPECT_EQ(graphemePrefix(GetParam().text, GetParam().maximumBytes), GetParam().prefix);
}

INSTANTIATE_TEST_SUITE_P(Table, GraphemePrefix,
                         testing::Values(PrefixCase{"everythingFits", "Ada", 3, "Ada"}, //
                                         PrefixCase{"moreThanFits", "Ada", 100, "Ada"}, //
                                         PrefixCase{"nothingFits", "Ada", 0, ""},       //
                                         PrefixCase{"cut", "Ada", 2, "Ad"},
                                         PrefixCase{"beforeACharacterThatWouldBeParted", "aé", 2, "a"},
                                         PrefixCase{"beforeTheMarkOfTheLastLetter", "ae\u0301", 2, "a"},
                                         PrefixCase{"betweenFlags", "🇳🇵🇩🇪", 12, "🇳🇵"}, //
                                         PrefixCase{"betweenLineBreaks", "\r\n\r\n", 3, "\r\n"},
                                         PrefixCase{"longName", std::string(300, 'x'), 255,
                                                    std::string(255, 'x')}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(GraphemeClusters, cutsOfRandomTextsAreClusterBoundaries) {
    const std::vector<std::string> parts{"a",        "e\u0301", "👨‍👩‍👧‍👦",
                                         "\r\n",     "🇳🇵",      "🇩",
                                         "\u0301",   "\u200D",  "😀",
                                         "👍🏽", "नि",      "\u1112\u1161",
                                         " ",        "\xFF",    "1️⃣"};
    std::mt19937 random(20'240'501);
    for (int round = 0; round < 2'000; ++round) {
        std::string text;
        for (std::size_t part = random() % 30; part > 0; --part)
            text += parts[random() % parts.size()];
        std::vector<std::size_t> boundaries{0};
        while (boundaries.back() < text.size()) {
            const std::string_view rest = std::string_view(text).substr(boundaries.back());
            boundaries.push_back(boundaries.back() + firstGrapheme(rest).size());
        }
        for (std::size_t limit = 0; limit <= text.size(); ++limit) {
            std::size_t longest = 0;
            for (const std::size_t boundary : boundaries) {
                if (boundary <= limit) longest = boundary;
            }
            ASSERT_EQ(graphemePrefix(text, limit).size(), longest) << text;
        }
    }
}

TEST(Shortened, leavesAloneWhatFits) {
    EXPECT_EQ(shortened("Ann", 3), "Ann");
}

TEST(Shortened, endsInAnEllipsisWithinTheLimit) {
    EXPECT_EQ(shortened("Ann and Ben", 6), "Ann…");
}

TEST(Shortened, partsNoCharacter) {
    EXPECT_EQ(shortened("ae\u0301bcdef", 5), "a…");
}

class AMegabyte : public testing::TestWithParam<const char*> {};

TEST_P(AMegabyte, isFast) {
    std::string text = "a";
    while (text.size() < 1'000'000)
        text += GetParam();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_LE(graphemePrefix(text, 255).size(), 255U);
    EXPECT_LE(graphemePrefix(text, 999'999).size(), 999'999U);
    EXPECT_FALSE(firstGrapheme(text).empty());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

INSTANTIATE_TEST_SUITE_P(Table, AMegabyte,
                         testing::Values("\u0301", "\u200D", "👨‍", "🇳🇵", "x", "\r\n", "\xFF", "\u1161"));

TEST(GraphemeClusters, oneClusterOfAMegabyteIsFoundWhole) {
    std::string text = "e";
    while (text.size() < 1'000'000)
        text += "\u0301";
    EXPECT_EQ(firstGrapheme(text + "z"), text);
    EXPECT_EQ(graphemePrefix(text, 255), "");
}

} // namespace
} // namespace quillbook
