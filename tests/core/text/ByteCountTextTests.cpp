#include "core/text/ByteCountText.h"
#include "core/text/UserLocale.h"

#include <limits>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();

/// A no-break space (U+00A0) and its narrow form (U+202F) look like a blank, and marks of direction (U+200E,
/// U+200F, U+061C) like nothing.
std::string withPlainBlanks(std::string text) {
    const std::vector<std::pair<std::string, std::string>> plainForms = {
        {"\u202F", " "}, {"\u00A0", " "}, {"\u200E", ""}, {"\u200F", ""}, {"\u061C", ""}};
    for (const auto& [special, plain] : plainForms) {
        for (auto found = text.find(special); found != std::string::npos; found = text.find(special)) {
            text.replace(found, special.size(), plain);
        }
    }
    return text;
}

struct SizeCase {
    const char* name;
    std::int64_t bytes;
    const char* text;
};

class AmericanSize : public testing::TestWithParam<SizeCase> {};

TEST_P(AmericanSize, isThatOfDesktops) {
    EXPECT_EQ(withPlainBlanks(ByteCountText("en_US.UTF-8").fileSize(GetParam().bytes)), GetParam().text);
}

std::string nameOf(const testing::TestParamInfo<SizeCase>& test) {
    return test.param.name;
}

INSTANTIATE_TEST_SUITE_P(Units, AmericanSize,
                         testing::Values(SizeCase{"nothing", 0, "0 bytes"}, SizeCase{"oneByte", 1, "1 byte"},
                                         SizeCase{"bytes", 512, "512 bytes"},
                                         SizeCase{"lastOfBytes", 999, "999 bytes"},
                                         SizeCase{"kilobyte", 1'000, "1 kB"},
                                         SizeCase{"aBinaryKilobyteIsNothingSpecial", 1'024, "1 kB"},
                                         SizeCase{"megabyte", 1'000'000, "1 MB"},
                                         SizeCase{"megabytes", 48'220'417, "48.2 MB"},
                                         SizeCase{"gigabyte", 1'000'000'000, "1 GB"},
                                         SizeCase{"gigabytes", 1'254'000'000, "1.25 GB"},
                                         SizeCase{"oneDecimalIsEnough", 1'500'000'000, "1.5 GB"},
                                         SizeCase{"terabytes", 2'345'678'000'000, "2.35 TB"},
                                         SizeCase{"petabytes", 1'010'000'000'000'000, "1.01 PB"},
                                         SizeCase{"greatest", greatest, "9,223.37 PB"}),
                         nameOf);

INSTANTIATE_TEST_SUITE_P(
    Rounding, AmericanSize,
    testing::Values(SizeCase{"belowHalfAKilobyte", 2'499, "2 kB"}, SizeCase{"halfAKilobyte", 2'500, "3 kB"},
                    SizeCase{"belowHalfATenth", 2'249'999, "2.2 MB"},
                    SizeCase{"halfATenth", 2'250'000, "2.3 MB"},
                    SizeCase{"belowHalfAHundredth", 2'124'999'999, "2.12 GB"},
                    SizeCase{"halfAHundredth", 2'125'000'000, "2.13 GB"},
                    SizeCase{"lastOfKilobytes", 999'499, "999 kB"},
                    SizeCase{"firstThatRoundsToAMegabyte", 999'500, "1 MB"},
                    SizeCase{"aThousandKilobytesAreAMegabyte", 999'950, "1 MB"},
                    SizeCase{"lastOfMegabytes", 999'949'999, "999.9 MB"},
                    SizeCase{"aThousandMegabytesAreAGigabyte", 999'950'000, "1 GB"},
                    SizeCase{"lastOfGigabytes", 999'994'999'999, "999.99 GB"},
                    SizeCase{"aThousandGigabytesAreATerabyte", 999'995'000'000, "1 TB"},
                    SizeCase{"aThousandTerabytesAreAPetabyte", 999'995'000'000'000, "1 PB"},
                    SizeCase{"aThousandPetabytesStayPetabytes", 1'000'000'000'000'000'000, "1,000 PB"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(Negative, AmericanSize,
                         testing::Values(SizeCase{"minusOne", -1, "-1 byte"},
                                         SizeCase{"minusBytes", -512, "-512 bytes"},
                                         SizeCase{"minusMegabytes", -2'250'000, "-2.3 MB"},
                                         SizeCase{"minusPromotion", -999'950, "-1 MB"},
                                         SizeCase{"leastOfAll", least, "-9,223.37 PB"}),
                         nameOf);

struct PlaceCase {
    const char* name;
    const char* locale;
    std::int64_t bytes;
    const char* text;
};

class SizeInAPlace : public testing::TestWithParam<PlaceCase> {};

TEST_P(SizeInAPlace, hasItsDigitsAndWords) {
    EXPECT_EQ(withPlainBlanks(ByteCountText(GetParam().locale).fileSize(GetParam().bytes)), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SizeInAPlace,
    testing::Values(PlaceCase{"noLocaleReadsAsAmerican", "C", 2'300'000, "2.3 MB"},
                    PlaceCase{"posixReadsAsAmerican", "POSIX", 512, "512 bytes"},
                    PlaceCase{"germanBytes", "de_DE.UTF-8", 512, "512 Byte"},
                    PlaceCase{"germanKilobytes", "de_DE.UTF-8", 88'287, "88 kB"},
                    PlaceCase{"germanMegabytes", "de_DE.UTF-8", 3'482'110, "3,5 MB"},
                    PlaceCase{"germanGigabytes", "de_DE.UTF-8", 12'345'678'900, "12,35 GB"},
                    PlaceCase{"germanMinus", "de_DE.UTF-8", least, "-9.223,37 PB"},
                    PlaceCase{"frenchOctets", "fr_FR.UTF-8", 3'482'110, "3,5 Mo"},
                    PlaceCase{"persianBytes", "fa_IR.UTF-8", 512, "۵۱۲ بایت"},
                    PlaceCase{"persianMegabytes", "fa_IR.UTF-8", 3'482'110, "۳٫۵ MB"},
                    PlaceCase{"marathiMegabytes", "mr_IN.UTF-8", 3'482'110, "३.५ MB"},
                    PlaceCase{"egyptianKilobytes", "ar_EG.UTF-8", 88'287, "٨٨ كيلوبايت"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(ByteCountText, givesTheSameWordsToManyThreads) {
    const ByteCountText text("de_DE.UTF-8");
    const ByteCountText alone("de_DE.UTF-8");
    const auto bytesOf = [](int index) { return std::int64_t{7'919} * index * index * index; };
    std::vector<std::vector<std::string>> words(4);
    std::vector<std::thread> threads;
    for (auto& own : words) {
        threads.emplace_back([&own, &text, &bytesOf] {
            for (int index = 0; index < 1'000; ++index)
                own.push_back(text.fileSize(bytesOf(index)));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (int index = 0; index < 1'000; ++index) {
        const std::string expected = alone.fileSize(bytesOf(index));
        for (const auto& own : words)
            ASSERT_EQ(own[static_cast<std::size_t>(index)], expected);
    }
}

TEST(ByteCountText, usersOwnIsMadeOnceInTheLocaleOfTheirNumbers) {
    EXPECT_EQ(&ByteCountText::user(), &ByteCountText::user());
    EXPECT_EQ(ByteCountText::user().fileSize(3'482'110),
              ByteCountText(userNumberLocale()).fileSize(3'482'110));
}

} // namespace
} // namespace quillbook
