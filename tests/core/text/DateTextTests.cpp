#include "core/text/DateText.h"
#include "core/text/ISO8601.h"

#include <cmath>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

Date at(std::string_view text) {
    return parseISO8601Seconds(text).value();
}

/// Newer locale data put a narrow no-break space (U+202F) before "PM"; to people it is the same.
std::string withPlainBlanks(std::string text) {
    for (const std::string blank : {"\u202F", "\u00A0"}) {
        for (auto found = text.find(blank); found != std::string::npos; found = text.find(blank)) {
            text.replace(found, blank.size(), " ");
        }
    }
    return text;
}

TEST(DateTextTest, monthAndDayAreAbbreviated) {
    EXPECT_EQ(DateText("en_US.UTF-8", "UTC").monthAndDay(at("2026-11-15T19:48:57Z")), "Nov 15");
    EXPECT_EQ(DateText("de_DE.UTF-8", "UTC").monthAndDay(at("2026-11-15T19:48:57Z")), "15. Nov.");
}

struct WordsCase {
    const char* name;
    const char* locale;
    const char* zone;
    const char* instant;
    const char* day;
    const char* time;
    const char* dayAndTime;
};

class DateWords : public testing::TestWithParam<WordsCase> {
protected:
    DateWords() : text(GetParam().locale, GetParam().zone), date(at(GetParam().instant)) {}

    const DateText text;
    const Date date;
};

TEST_P(DateWords, areTheDay) {
    EXPECT_EQ(withPlainBlanks(text.day(date)), GetParam().day);
}

TEST_P(DateWords, areTheTime) {
    EXPECT_EQ(withPlainBlanks(text.time(date)), GetParam().time);
}

TEST_P(DateWords, areBoth) {
    EXPECT_EQ(withPlainBlanks(text.dayAndTime(date)), GetParam().dayAndTime);
}

INSTANTIATE_TEST_SUITE_P(
    Table, DateWords,
    testing::Values(WordsCase{"american", "en_US.UTF-8", "UTC", "2026-11-15T19:48:57Z", "November 15, 2026",
                              "7:48 PM", "November 15, 2026 at 7:48 PM"},
                    WordsCase{"noLocaleReadsAsAmerican", "C", "UTC", "2026-11-15T19:48:57Z",
                              "November 15, 2026", "7:48 PM", "November 15, 2026 at 7:48 PM"},
                    WordsCase{"posixReadsAsAmerican", "POSIX", "UTC", "2026-11-15T00:00:00Z",
                              "November 15, 2026", "12:00 AM", "November 15, 2026 at 12:00 AM"},
                    WordsCase{"plainUTF8ReadsAsAmerican", "C.UTF-8", "UTC", "2026-11-15T12:00:00Z",
                              "November 15, 2026", "12:00 PM", "November 15, 2026 at 12:00 PM"},
                    WordsCase{"british", "en_GB.UTF-8", "Europe/London", "2026-07-15T19:48:57Z",
                              "15 July 2026", "20:48", "15 July 2026 at 20:48"},
                    WordsCase{"german", "de_DE.UTF-8", "Europe/Berlin", "2026-11-15T19:48:57Z",
                              "15. November 2026", "20:48", "15. November 2026 um 20:48"},
                    WordsCase{"germanInSummerTime", "de_DE.UTF-8", "Europe/Berlin", "2026-07-15T19:48:57Z",
                              "15. Juli 2026", "21:48", "15. Juli 2026 um 21:48"},
                    WordsCase{"germanWithEuro", "de_DE@euro", "Europe/Berlin", "2026-03-01T11:00:00Z",
                              "1. März 2026", "12:00", "1. März 2026 um 12:00"},
                    WordsCase{"nepaleseZone", "en_US.UTF-8", "Asia/Kathmandu", "2026-11-15T19:48:57Z",
                              "November 16, 2026", "1:33 AM", "November 16, 2026 at 1:33 AM"},
                    WordsCase{"secondsAreCut", "en_US.UTF-8", "UTC", "2026-11-15T23:59:59Z",
                              "November 15, 2026", "11:59 PM", "November 15, 2026 at 11:59 PM"},
                    WordsCase{"japanese", "ja_JP.UTF-8", "Asia/Tokyo", "2026-11-15T19:48:57Z",
                              "2026年11月16日", "4:48", "2026年11月16日 4:48"},
                    WordsCase{"unknownZoneIsUTC", "en_US.UTF-8", "Nowhere/Atall", "2026-11-15T19:48:57Z",
                              "November 15, 2026", "7:48 PM", "November 15, 2026 at 7:48 PM"},
                    WordsCase{"beforeTheUnixEpoch", "en_US.UTF-8", "UTC", "1969-07-20T20:17:40Z",
                              "July 20, 1969", "8:17 PM", "July 20, 1969 at 8:17 PM"},
                    // Monrovia kept to 44 minutes and 30 seconds behind Greenwich until 1972.
                    WordsCase{"zoneWithSeconds", "en_US.UTF-8", "Africa/Monrovia", "1971-01-01T00:44:30Z",
                              "January 1, 1971", "12:00 AM", "January 1, 1971 at 12:00 AM"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(DateText, minuteOfAZoneWithSecondsEndsWithTheZonesMinute) {
    const DateText text("en_US.UTF-8", "Africa/Monrovia");
    EXPECT_EQ(withPlainBlanks(text.time(at("1971-01-01T00:44:29Z"))), "11:59 PM");
    EXPECT_EQ(withPlainBlanks(text.time(at("1971-01-01T00:44:30Z"))), "12:00 AM");
    EXPECT_EQ(text.day(at("1971-01-01T00:44:29Z")), "December 31, 1970");
}

struct MediumDayCase {
    const char* name;
    const char* locale;
    const char* zone;
    const char* instant;
    const char* day;
};

class MediumDay : public testing::TestWithParam<MediumDayCase> {};

TEST_P(MediumDay, isADateOfMediumLengthWithoutATime) {
    const DateText text(GetParam().locale, GetParam().zone);
    EXPECT_EQ(withPlainBlanks(text.mediumDay(at(GetParam().instant))), GetParam().day);
}

INSTANTIATE_TEST_SUITE_P(
    Table, MediumDay,
    testing::Values(
        MediumDayCase{"american", "en_US.UTF-8", "UTC", "2026-11-15T19:48:57Z", "Nov 15, 2026"},
        MediumDayCase{"noLocaleReadsAsAmerican", "C", "UTC", "2026-11-15T19:48:57Z", "Nov 15, 2026"},
        MediumDayCase{"german", "de_DE.UTF-8", "Europe/Berlin", "2026-11-15T19:48:57Z", "15.11.2026"},
        MediumDayCase{"japanese", "ja_JP.UTF-8", "Asia/Tokyo", "2026-11-15T19:48:57Z", "2026/11/16"},
        MediumDayCase{"nepaleseZone", "en_US.UTF-8", "Asia/Kathmandu", "2026-11-15T18:15:00Z",
                      "Nov 16, 2026"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(DateText, dayChangesAtLocalMidnight) {
    const DateText text("en_US.UTF-8", "Asia/Kathmandu");
    EXPECT_EQ(text.day(at("2026-11-15T18:14:59Z")), "November 15, 2026");
    EXPECT_EQ(text.day(at("2026-11-15T18:15:00Z")), "November 16, 2026");
    EXPECT_EQ(text.day(at("2026-11-15T18:14:59Z")), "November 15, 2026");
}

TEST(DateText, hourThatComesTwiceReadsTheSameTwice) {
    const DateText text("de_DE.UTF-8", "Europe/Berlin");
    EXPECT_EQ(text.time(at("2026-10-25T00:30:00Z")), "02:30");
    EXPECT_EQ(text.time(at("2026-10-25T01:30:00Z")), "02:30");
    EXPECT_EQ(text.time(at("2026-10-25T02:30:00Z")), "03:30");
}

TEST(DateText, fileNameStampHasTheSameDigitsInEveryLocale) {
    for (const char* locale :
         {"en_US.UTF-8", "de_DE.UTF-8", "ar_EG.UTF-8", "fa_IR.UTF-8", "th_TH.UTF-8", "C"}) {
        EXPECT_EQ(DateText(locale, "UTC").fileNameStamp(at("2026-11-15T19:48:57Z")), "2026-11-15 19.48.57")
            << locale;
    }
}

TEST(DateText, fileNameStampIsLocalTime) {
    EXPECT_EQ(DateText("C", "Asia/Kathmandu").fileNameStamp(at("2026-11-15T19:48:57Z")),
              "2026-11-16 01.33.57");
}

TEST(DateText, datesBeyondAllCalendarsHaveWords) {
    const DateText text("en_US.UTF-8", "UTC");
    for (const double seconds : {1e300, -1e300, 1e15, -1e15, static_cast<double>(NAN)}) {
        EXPECT_FALSE(text.day(Date{seconds}).empty());
        EXPECT_FALSE(text.mediumDay(Date{seconds}).empty());
        EXPECT_FALSE(text.time(Date{seconds}).empty());
        EXPECT_FALSE(text.dayAndTime(Date{seconds}).empty());
        EXPECT_FALSE(text.fileNameStamp(Date{seconds}).empty());
    }
}

struct PlaceCase {
    const char* name;
    const char* locale;
    const char* zone;
};

class Place : public testing::TestWithParam<PlaceCase> {};

TEST_P(Place, wordsOfManyDatesEqualThoseOfAFreshOne) {
    const DateText text(GetParam().locale, GetParam().zone);
    std::mt19937_64 random(20'240'501);
    std::uniform_real_distribution<double> seconds(-2e9, 3e9);
    double last = 0;
    for (int round = 0; round < 400; ++round) {
        // Every other date lies near the one before, as in a conversation.
        last = round % 2 == 0 ? seconds(random) : last + static_cast<double>(random() % 200'000);
        const DateText fresh(GetParam().locale, GetParam().zone);
        ASSERT_EQ(text.day(Date{last}), fresh.day(Date{last})) << last;
        ASSERT_EQ(text.time(Date{last}), fresh.time(Date{last})) << last;
    }
}

INSTANTIATE_TEST_SUITE_P(Table, Place,
                         testing::Values(PlaceCase{"newYork", "en_US.UTF-8", "America/New_York"},
                                         PlaceCase{"berlin", "de_DE.UTF-8", "Europe/Berlin"},
                                         PlaceCase{"kathmandu", "ne_NP.UTF-8", "Asia/Kathmandu"},
                                         PlaceCase{"bangkok", "th_TH.UTF-8", "Asia/Bangkok"},
                                         PlaceCase{"tehran", "fa_IR.UTF-8", "Asia/Tehran"},
                                         PlaceCase{"lordHowe", "en_AU.UTF-8", "Australia/Lord_Howe"},
                                         PlaceCase{"monrovia", "en_LR.UTF-8", "Africa/Monrovia"},
                                         PlaceCase{"apia", "en_WS.UTF-8", "Pacific/Apia"}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(DateText, givesTheSameWordsToManyThreads) {
    const DateText text("en_US.UTF-8", "Asia/Kathmandu");
    const DateText alone("en_US.UTF-8", "Asia/Kathmandu");
    std::vector<std::vector<std::string>> words(4);
    const auto dateOf = [](int index) { return Date{736'000'000.0 + index * 7'919.0}; };
    std::vector<std::thread> threads;
    for (auto& own : words) {
        threads.emplace_back([&own, &text, &dateOf] {
            for (int index = 0; index < 2'000; ++index)
                own.push_back(text.day(dateOf(index)) + text.time(dateOf(index)));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (int index = 0; index < 2'000; ++index) {
        const std::string expected = alone.day(dateOf(index)) + alone.time(dateOf(index));
        for (const auto& own : words)
            ASSERT_EQ(own[static_cast<std::size_t>(index)], expected);
    }
}

TEST(DateText, usersOwnIsMadeOnce) {
    EXPECT_EQ(&DateText::user(), &DateText::user());
    EXPECT_FALSE(DateText::user().day(Date{0}).empty());
}

} // namespace
} // namespace quillbook
