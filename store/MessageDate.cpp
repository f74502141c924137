#include "store/MessageDate.h"

namespace quillbook {

Date messageDate(std::int64_t raw) {
    // The unit is not recorded. 10^12 seconds lie 31,000 years away, 10^12 nanoseconds a quarter of an hour.
    constexpr std::int64_t firstNanosecondCount = 1'000'000'000'000;
    const bool isSeconds = raw > -firstNanosecondCount && raw < firstNanosecondCount;
    return Date{isSeconds ? static_cast<double>(raw) : static_cast<double>(raw) / 1'000'000'000.0};
}

std::optional<Date> messageDate(const SQLiteRow& row, std::string_view column) {
    const auto raw = row.storedInteger(column);
    return raw ? std::optional(messageDate(*raw)) : std::nullopt;
}

} // namespace quillbook
