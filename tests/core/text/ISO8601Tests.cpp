#include "core/text/ISO8601.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

struct SecondsCase {
    const char* name;
    double unixSeconds;
    const char* text;
};

class ISO8601Seconds : public testing::TestWithParam<SecondsCase> {};

TEST_P(ISO8601Seconds, isWritten) {
    EXPECT_EQ(iso8601Seconds(Date::fromUnixSeconds(GetParam().unixSeconds)), GetParam().text);
}

TEST_P(ISO8601Seconds, isReadAsTheWholeSecond) {
    const auto date = parseISO8601Seconds(GetParam().text);
    ASSERT_TRUE(date);
    EXPECT_EQ(date->unixSeconds(), std::floor(GetParam().unixSeconds));
}

INSTANTIATE_TEST_SUITE_P(
    Table, ISO8601Seconds,
    testing::Values(SecondsCase{"unixEpoch", 0, "1970-01-01T00:00:00Z"},
                    SecondsCase{"referenceDate", 978'307'200, "2001-01-01T00:00:00Z"},
                    SecondsCase{"anyMoment", 1'714'566'896, "2024-05-01T12:34:56Z"},
                    SecondsCase{"fractionIsDropped", 1'714'566'896.999, "2024-05-01T12:34:56Z"},
                    SecondsCase{"lastSecondOfADay", 1'714'607'999.5, "2024-05-01T23:59:59Z"},
                    SecondsCase{"fractionBeforeTheReferenceDate", 978'307'199.5, "2000-12-31T23:59:59Z"},
                    SecondsCase{"fractionBeforeTheUnixEpoch", -0.5, "1969-12-31T23:59:59Z"},
                    SecondsCase{"leapDay", 1'709'164'800, "2024-02-29T00:00:00Z"},
                    SecondsCase{"dayBehindALeapDay", 1'709'251'200, "2024-03-01T00:00:00Z"},
                    SecondsCase{"leapDayOfTheCentury", 951'782'400, "2000-02-29T00:00:00Z"},
                    SecondsCase{"noLeapDayIn1900", -2'203'891'200, "1900-03-01T00:00:00Z"},
                    SecondsCase{"endOfFebruary1900", -2'203'891'201, "1900-02-28T23:59:59Z"},
                    SecondsCase{"behind32Bits", 4'294'967'296, "2106-02-07T06:28:16Z"},
                    SecondsCase{"lastOfFourDigits", 253'402'300'799, "9999-12-31T23:59:59Z"},
                    SecondsCase{"firstOfFiveDigits", 253'402'300'800, "10000-01-01T00:00:00Z"},
                    SecondsCase{"tenToTheTwelveBehindTheReferenceDate", 1'000'978'307'200,
                                "33689-09-27T01:46:40Z"},
                    SecondsCase{"yearOne", -62'135'596'800, "0001-01-01T00:00:00Z"},
                    SecondsCase{"yearZero", -62'167'219'200, "0000-01-01T00:00:00Z"},
                    SecondsCase{"yearBeforeZero", -62'167'219'201, "-0001-12-31T23:59:59Z"},
                    SecondsCase{"farBeforeZero", -1'000'000'000'000, "-29719-04-05T22:13:20Z"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(ISO8601, datesBeyondAllCalendarsStayFinite) {
    for (const double seconds : {1e300, std::numeric_limits<double>::infinity(), 1e15}) {
        const std::string text = iso8601Seconds(Date{seconds});
        EXPECT_EQ(text, iso8601Seconds(Date{1e15}));
        EXPECT_TRUE(parseISO8601Seconds(text));
        const std::string before = iso8601Seconds(Date{-seconds});
        EXPECT_EQ(before, iso8601Seconds(Date{-1e15}));
        EXPECT_TRUE(parseISO8601Seconds(before));
    }
}

TEST(ISO8601, noNumberIsTheReferenceDate) {
    const Date none{std::numeric_limits<double>::quiet_NaN()};
    EXPECT_EQ(iso8601Seconds(none), "2001-01-01T00:00:00Z");
    EXPECT_EQ(iso8601Milliseconds(none), "2001-01-01T00:00:00.000Z");
}

TEST(ISO8601, everyDayOfEightHundredYearsFollowsTheOneBefore) {
    // An independent count of the days: by month lengths, one day after the other.
    constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    double unixDays = -135'140; // 1600-01-01
    for (int year = 1600; year < 2400; ++year) {
        const bool isLeap = year % 400 == 0 || (year % 4 == 0 && year % 100 != 0);
        for (int month = 1; month <= 12; ++month) {
            const int length = lengths[month - 1] + (month == 2 && isLeap ? 1 : 0);
            for (int day = 1; day <= length; ++day) {
                std::array<char, 32> expected{};
                std::snprintf(expected.data(), expected.size(), "%04d-%02d-%02dT00:00:00Z", year, month, day);
                ASSERT_EQ(iso8601Seconds(Date::fromUnixSeconds(unixDays * 86'400)), expected.data());
                unixDays += 1;
            }
        }
    }
}

TEST(ISO8601, wholeSecondsComeBackEqual) {
    std::mt19937_64 random(20'240'501);
    std::uniform_int_distribution<std::int64_t> seconds(-1'000'000'000'000, 1'000'000'000'000);
    for (int round = 0; round < 20'000; ++round) {
        const Date date{static_cast<double>(seconds(random))};
        ASSERT_EQ(parseISO8601Seconds(iso8601Seconds(date)), date) << iso8601Seconds(date);
    }
}

TEST(ISO8601, laterDatesNeverReadAsEarlier) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> seconds(-1e12, 1e12);
    for (int round = 0; round < 20'000; ++round) {
        const Date date{seconds(random)};
        const auto read = parseISO8601Seconds(iso8601Seconds(date));
        ASSERT_TRUE(read);
        ASSERT_LE(read->secondsSinceReferenceDate, date.secondsSinceReferenceDate);
        ASSERT_GT(read->secondsSinceReferenceDate + 1, date.secondsSinceReferenceDate);
    }
}

struct MillisecondsCase {
    const char* name;
    double secondsSinceReferenceDate;
    const char* text;
};

class ISO8601Milliseconds : public testing::TestWithParam<MillisecondsCase> {};

TEST_P(ISO8601Milliseconds, areCut) {
    EXPECT_EQ(iso8601Milliseconds(Date{GetParam().secondsSinceReferenceDate}), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ISO8601Milliseconds,
    testing::Values(MillisecondsCase{"none", 736'259'696, "2024-05-01T12:34:56.000Z"},
                    MillisecondsCase{"exact", 736'259'696.123, "2024-05-01T12:34:56.123Z"},
                    MillisecondsCase{"cutNotRounded", 736'259'696.9996, "2024-05-01T12:34:56.999Z"},
                    MillisecondsCase{"lastOne", 736'259'696.999, "2024-05-01T12:34:56.999Z"},
                    MillisecondsCase{"half", 736'259'696.5, "2024-05-01T12:34:56.500Z"},
                    MillisecondsCase{"one", 736'259'696.001, "2024-05-01T12:34:56.001Z"},
                    MillisecondsCase{"beforeTheReferenceDate", -0.25, "2000-12-31T23:59:59.750Z"},
                    MillisecondsCase{"lastOneOfAYear", -0.0004, "2000-12-31T23:59:59.999Z"},
                    MillisecondsCase{"tenToTheTwelveBehindTheReferenceDate", 1e12 + 0.5,
                                     "33689-09-27T01:46:40.500Z"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(ISO8601Milliseconds, everyThousandthStaysAsItWasStored) {
    for (int thousandth = 0; thousandth < 1'000; ++thousandth) {
        std::array<char, 8> expected{};
        std::snprintf(expected.data(), expected.size(), ".%03dZ", thousandth);
        // As a database of nanoseconds gives it.
        const double seconds = (736'259'696.0 * 1'000 + thousandth) * 1'000'000 / 1'000'000'000;
        ASSERT_EQ(iso8601Milliseconds(Date{seconds}), "2024-05-01T12:34:56" + std::string(expected.data()));
    }
}

class NoISO8601 : public testing::TestWithParam<const char*> {};

TEST_P(NoISO8601, isNothing) {
    EXPECT_EQ(parseISO8601Seconds(GetParam()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Table, NoISO8601,
    testing::Values("", "-", "Z", "2024", "2024-05-01", "2024-05-01T12:34:56", "2024-05-01T12:34:56.5Z",
                    "2024-05-01T12:34:56z", "2024-05-01t12:34:56Z", "2024-05-01 12:34:56Z",
                    "2024-05-01T12:34:56+00:00", " 2024-05-01T12:34:56Z", "2024-05-01T12:34:56Z ",
                    "2024-5-01T12:34:56Z", "24-05-01T12:34:56Z", "2024-00-01T12:34:56Z",
                    "2024-13-01T12:34:56Z", "2024-05-00T12:34:56Z", "2024-05-32T12:34:56Z",
                    "2024-04-31T12:34:56Z", "2023-02-29T12:34:56Z", "1900-02-29T12:34:56Z",
                    "2024-05-01T24:00:00Z", "2024-05-01T12:60:00Z", "2024-05-01T12:34:60Z",
                    "2024-05-01T1a:34:56Z", "2024-05-01T-1:34:56Z", "2024/05/01T12:34:56Z",
                    "+2024-05-01T12:34:56Z", "--2024-05-01T12:34:56Z", "--000-05-01T12:34:56Z",
                    "-0000-05-01T12:34:56Z", "02024-05-01T12:34:56Z", "000000002024-05-01T12:34:56Z",
                    "20x4-05-01T12:34:56Z", "123456789-05-01T12:34:56Z",
                    "99999999999999999999-05-01T12:34:56Z", "２０２４-05-01T12:34:56Z"));

} // namespace
} // namespace quillbook
