#include "core/text/ISO8601.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include <fmt/format.h>

namespace quillbook {
namespace {

constexpr std::int64_t secondsPerDay = 86'400;
// The proleptic Gregorian calendar repeats every 400 years.
constexpr std::int64_t daysPerEra = 146'097;
// Far beyond every date a database can hold, and safe for 64-bit day arithmetic.
constexpr double farthestSeconds = 1e15;

struct CivilDay {
    std::int64_t year = 1970;
    int month = 1;
    int day = 1;
};

constexpr bool isLeapYear(std::int64_t year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

constexpr int daysInMonth(std::int64_t year, int month) {
    constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : lengths[month - 1];
}

constexpr std::int64_t floorDivide(std::int64_t value, std::int64_t divisor) {
    const std::int64_t quotient = value / divisor;
    return value % divisor < 0 ? quotient - 1 : quotient;
}

/// Days from 1970-01-01 to the first day of a year.
constexpr std::int64_t daysBeforeYear(std::int64_t year) {
    const std::int64_t past = year - 1;
    return 365 * past + floorDivide(past, 4) - floorDivide(past, 100) + floorDivide(past, 400) - 719'162;
}

CivilDay civilDay(std::int64_t daysSinceEpoch) {
    CivilDay civil;
    // A first guess by the mean length of a year is off by one year at the most.
    civil.year = 1970 + floorDivide(daysSinceEpoch * 400, daysPerEra);
    while (daysBeforeYear(civil.year) > daysSinceEpoch)
        --civil.year;
    while (daysBeforeYear(civil.year + 1) <= daysSinceEpoch)
        ++civil.year;
    auto rest = static_cast<int>(daysSinceEpoch - daysBeforeYear(civil.year));
    while (rest >= daysInMonth(civil.year, civil.month))
        rest -= daysInMonth(civil.year, civil.month++);
    civil.day = rest + 1;
    return civil;
}

void appendTwoDigits(std::string& text, int value) {
    text += static_cast<char>('0' + value / 10);
    text += static_cast<char>('0' + value % 10);
}

/// Dates of one conversation come in runs of the same day, so the last day's text is kept.
std::string_view dayText(std::int64_t day) {
    thread_local std::int64_t lastDay = std::numeric_limits<std::int64_t>::min();
    thread_local std::string lastText;
    if (day != lastDay) {
        const CivilDay civil = civilDay(day);
        lastText = fmt::format("{}{:04}-{:02}-{:02}T", civil.year < 0 ? "-" : "", std::abs(civil.year),
                               civil.month, civil.day);
        lastDay = day;
    }
    return lastText;
}

std::string secondsText(std::int64_t unixSeconds) {
    const std::int64_t day = floorDivide(unixSeconds, secondsPerDay);
    const auto second = static_cast<int>(unixSeconds - day * secondsPerDay);
    std::string text(dayText(day));
    appendTwoDigits(text, second / 3'600);
    text += ':';
    appendTwoDigits(text, second / 60 % 60);
    text += ':';
    appendTwoDigits(text, second % 60);
    return text;
}

double boundedSeconds(Date date) {
    const double seconds = date.secondsSinceReferenceDate;
    if (std::isnan(seconds)) return 0;
    return std::clamp(seconds, -farthestSeconds, farthestSeconds);
}

std::optional<int> twoDigits(std::string_view text, std::size_t at) {
    int value = 0;
    for (const char c : text.substr(at, 2)) {
        if (c < '0' || c > '9') return std::nullopt;
        value = value * 10 + (c - '0');
    }
    return value;
}

} // namespace

std::string iso8601Seconds(Date date) {
    const auto whole = static_cast<std::int64_t>(std::floor(boundedSeconds(date)));
    return secondsText(whole + referenceDateUnixSeconds) + 'Z';
}

std::string iso8601Milliseconds(Date date) {
    const double seconds = boundedSeconds(date);
    double whole = std::floor(seconds);
    // A double holds a present-day instant to about 0.1 µs, and a count of nanoseconds is rounded twice on
    // its way into one. What lies within that of the next whole millisecond is it: without this, a stored
    // .123 s would often read .122.
    const double resolution =
        2 * (std::nextafter(std::abs(seconds), farthestSeconds * 2) - std::abs(seconds));
    auto milliseconds = static_cast<int>(std::floor((seconds - whole + resolution) * 1'000));
    if (milliseconds >= 1'000) {
        milliseconds -= 1'000;
        whole += 1;
    }
    const std::int64_t unixSeconds = static_cast<std::int64_t>(whole) + referenceDateUnixSeconds;
    return fmt::format("{}.{:03}Z", secondsText(unixSeconds), milliseconds);
}

std::optional<Date> parseISO8601Seconds(std::string_view text) {
    constexpr std::string_view pattern = "-MM-DDThh:mm:ssZ";
    const bool isNegative = !text.empty() && text.front() == '-';
    if (isNegative) text.remove_prefix(1);
    const std::size_t yearLength = text.size() - std::min(text.size(), pattern.size());
    if (yearLength < 4 || yearLength > 8) return std::nullopt;
    // Neither a second sign nor zeros in front of a long year: one instant has one text.
    if (text[0] < '0' || text[0] > '9' || (yearLength > 4 && text[0] == '0')) return std::nullopt;
    const std::string_view rest = text.substr(yearLength);
    if (rest[0] != '-' || rest[3] != '-' || rest[6] != 'T' || rest[9] != ':' || rest[12] != ':' ||
        rest[15] != 'Z') {
        return std::nullopt;
    }
    std::int64_t year = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + yearLength, year);
    if (error != std::errc() || end != text.data() + yearLength) return std::nullopt;
    if (isNegative && year == 0) return std::nullopt;
    if (isNegative) year = -year;
    const auto month = twoDigits(rest, 1);
    const auto day = twoDigits(rest, 4);
    const auto hour = twoDigits(rest, 7);
    const auto minute = twoDigits(rest, 10);
    const auto second = twoDigits(rest, 13);
    if (!month || !day || !hour || !minute || !second) return std::nullopt;
    if (*month < 1 || *month > 12 || *day < 1 || *day > daysInMonth(year, *month)) return std::nullopt;
    if (*hour > 23 || *minute > 59 || *second > 59) return std::nullopt;

    std::int64_t days = daysBeforeYear(year) + *day - 1;
    for (int earlier = 1; earlier < *month; ++earlier)
        days += daysInMonth(year, earlier);
    const std::int64_t unixSeconds = days * secondsPerDay + *hour * 3'600 + *minute * 60 + *second;
    return Date{static_cast<double>(unixSeconds - referenceDateUnixSeconds)};
}

} // namespace quillbook
