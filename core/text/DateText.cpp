#include "core/text/DateText.h"

#include "core/text/ICULocale.h"
#include "core/text/UserLocale.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <mutex>
#include <optional>
#include <stdexcept>

#include <unicode/datefmt.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

namespace quillbook {
namespace {

constexpr double millisecondsPerMinute = 60'000;
constexpr std::int64_t minutesPerDay = 1'440;
// Every zone has kept to whole minutes since the last one changed over, in 1972; before, a shown minute can
// start at any second.
constexpr double wholeMinuteOffsetsSince = 94'694'400'000.0;
constexpr double farthestMilliseconds = 8.64e15;

std::unique_ptr<icu::DateFormat> prepared(icu::DateFormat* format, const icu::TimeZone& zone) {
    if (format == nullptr) throw std::runtime_error("The locale data of dates could not be loaded.");
    format->setTimeZone(zone);
    return std::unique_ptr<icu::DateFormat>(format);
}

std::string formatted(const icu::DateFormat& format, UDate milliseconds) {
    icu::UnicodeString text;
    format.format(milliseconds, text);
    std::string utf8;
    text.toUTF8String(utf8);
    return utf8;
}

UDate icuDate(Date date) {
    const double milliseconds = date.unixSeconds() * 1'000;
    return std::isnan(milliseconds) ? 0
                                    : std::clamp(milliseconds, -farthestMilliseconds, farthestMilliseconds);
}

std::unique_ptr<icu::TimeZone> zoneNamed(const std::string& name) {
    return std::unique_ptr<icu::TimeZone>(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name)));
}

std::string hostTimeZoneName() {
    const std::unique_ptr<icu::TimeZone> host(icu::TimeZone::detectHostTimeZone());
    icu::UnicodeString name;
    if (host) host->getID(name);
    std::string utf8;
    name.toUTF8String(utf8);
    return utf8;
}

} // namespace

struct DateText::Formatters {
    std::unique_ptr<icu::TimeZone> zone;
    std::unique_ptr<icu::DateFormat> day;
    std::unique_ptr<icu::DateFormat> mediumDay;
    std::unique_ptr<icu::DateFormat> monthAndDay;
    std::unique_ptr<icu::DateFormat> time;
    std::unique_ptr<icu::DateFormat> dayAndTime;
    std::unique_ptr<icu::DateFormat> stamp;

    /// Minutes from the local midnight of 1970-01-01, or nothing for a date whose shown minute depends on its
    /// second.
    std::optional<std::int64_t> localMinute(UDate milliseconds) const {
        if (milliseconds < wholeMinuteOffsetsSince) return std::nullopt;
        int32_t raw = 0;
        int32_t saving = 0;
        UErrorCode status = U_ZERO_ERROR;
        zone->getOffset(milliseconds, false, raw, saving, status);
        if (U_FAILURE(status)) return std::nullopt;
        return static_cast<std::int64_t>(std::floor((milliseconds + raw + saving) / millisecondsPerMinute));
    }

    // A conversation asks for the same day and the same minutes of the day again and again; ICU takes a
    // microsecond for each.
    mutable std::mutex lock;
    mutable std::int64_t lastDay = std::numeric_limits<std::int64_t>::min();
    mutable std::string lastDayText;
    mutable std::array<std::string, minutesPerDay> timeOfMinute;
};

DateText::DateText(const std::string& locale, const std::string& timeZone)
    : formatters_(std::make_unique<Formatters>()) {
    const icu::Locale place = icuLocale(locale);
    formatters_->zone = zoneNamed(timeZone);
    const icu::TimeZone& zone = *formatters_->zone;
    using Style = icu::DateFormat;
    formatters_->day = prepared(Style::createDateInstance(Style::kLong, place), zone);
    formatters_->mediumDay = prepared(Style::createDateInstance(Style::kMedium, place), zone);
    UErrorCode status = U_ZERO_ERROR;
    formatters_->monthAndDay = prepared(Style::createInstanceForSkeleton("MMMd", place, status), zone);
    formatters_->time = prepared(Style::createTimeInstance(Style::kShort, place), zone);
    formatters_->dayAndTime =
        prepared(Style::createDateTimeInstance(Style::kLong, Style::kShort, place), zone);
    formatters_->stamp =
        prepared(new icu::SimpleDateFormat("yyyy-MM-dd HH.mm.ss", icu::Locale("en_US_POSIX"), status), zone);
}

DateText::~DateText() = default;

const DateText& DateText::user() {
    static const DateText text(userTimeLocale(), hostTimeZoneName());
    return text;
}

std::string DateText::day(Date date) const {
    const UDate milliseconds = icuDate(date);
    const auto minute = formatters_->localMinute(milliseconds);
    const std::lock_guard guard(formatters_->lock);
    if (!minute) return formatted(*formatters_->day, milliseconds);
    const std::int64_t dayNumber = *minute / minutesPerDay;
    if (dayNumber != formatters_->lastDay) {
        formatters_->lastDayText = formatted(*formatters_->day, milliseconds);
        formatters_->lastDay = dayNumber;
    }
    return formatters_->lastDayText;
}

std::string DateText::mediumDay(Date date) const {
    const std::lock_guard guard(formatters_->lock);
    return formatted(*formatters_->mediumDay, icuDate(date));
}

std::string DateText::monthAndDay(Date date) const {
    const std::lock_guard guard(formatters_->lock);
    return formatted(*formatters_->monthAndDay, icuDate(date));
}

std::string DateText::time(Date date) const {
    const UDate milliseconds = icuDate(date);
    const auto minute = formatters_->localMinute(milliseconds);
    const std::lock_guard guard(formatters_->lock);
    if (!minute) return formatted(*formatters_->time, milliseconds);
    std::string& text = formatters_->timeOfMinute[static_cast<std::size_t>(*minute % minutesPerDay)];
    if (text.empty()) text = formatted(*formatters_->time, milliseconds);
    return text;
}

std::string DateText::dayAndTime(Date date) const {
    const std::lock_guard guard(formatters_->lock);
    return formatted(*formatters_->dayAndTime, icuDate(date));
}

std::string DateText::fileNameStamp(Date date) const {
    const std::lock_guard guard(formatters_->lock);
    return formatted(*formatters_->stamp, icuDate(date));
}

} // namespace quillbook
