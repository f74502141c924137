#pragma once

#include <chrono>
#include <compare>
#include <cstdint>

namespace quillbook {

/// An instant with sub-second resolution. A plain value.
struct Date {
    /// Seconds since 2001-01-01 00:00:00 UTC, the reference date of the formats that are read; negative
    /// before it.
    double secondsSinceReferenceDate = 0;

    /// The present moment of the system's clock.
    static Date now();
    static Date fromUnixSeconds(double seconds);
    /// Seconds since 1970-01-01 00:00:00 UTC.
    double unixSeconds() const;

    auto operator<=>(const Date&) const = default;
};

/// 2001-01-01 00:00:00 UTC as seconds since 1970-01-01 00:00:00 UTC.
inline constexpr std::int64_t referenceDateUnixSeconds = 978'307'200;

} // namespace quillbook
