#pragma once

#include "core/text/Date.h"

#include <memory>
#include <string>

namespace quillbook {

/// Dates and times as people read them on their desktops, in one locale and time zone. Safe to call from any
/// thread.
class DateText {
public:
    /// `locale` as POSIX names it, `timeZone` an Olson name such as "Asia/Kathmandu".
    DateText(const std::string& locale, const std::string& timeZone);
    ~DateText();
    DateText(const DateText&) = delete;
    DateText& operator=(const DateText&) = delete;

    /// The user's own, made on first use and kept for the life of the process.
    static const DateText& user();

    /// Long date, no time, as in "November 15, 2026".
    std::string day(Date date) const;
    /// Medium date, no time, as in "Nov 15, 2026".
    std::string mediumDay(Date date) const;
    /// Abbreviated month and day, as in "Nov 15".
    std::string monthAndDay(Date date) const;
    /// Short time, no date, as in "7:48 PM".
    std::string time(Date date) const;
    /// Long date and short time, as in "November 15, 2026 at 7:48 PM".
    std::string dayAndTime(Date date) const;
    /// "2026-11-15 19.48.57": for names of folders; the same digits in every locale.
    std::string fileNameStamp(Date date) const;

private:
    struct Formatters;
    std::unique_ptr<Formatters> formatters_;
};

} // namespace quillbook
