#pragma once

#include <cstdint>
#include <limits>

namespace quillbook {

/// The sum, or the nearest number there is: counts and sizes may come from a database that nobody vouches
/// for.
constexpr std::int64_t saturatingSum(std::int64_t one, std::int64_t other) {
    using Limits = std::numeric_limits<std::int64_t>;
    if (other > 0 && one > Limits::max() - other) return Limits::max();
    if (other < 0 && one < Limits::min() - other) return Limits::min();
    return one + other;
}

} // namespace quillbook
