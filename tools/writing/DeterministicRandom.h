#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace quillbook::sample {

/// Random numbers that are the same on every machine: the engine is fixed by the C++ standard, and the
/// mappings to ranges are our own, since those of the standard library differ between implementations.
class DeterministicRandom {
public:
    /// Each subject has a stream of its own, so that drawing more for one leaves the others as they were.
    DeterministicRandom(std::uint64_t seed, std::string_view subject);

    std::uint64_t next() { return engine_(); }
    /// From 0 to `count` - 1; `count` is at least 1.
    std::uint64_t below(std::uint64_t count) { return engine_() % count; }
    std::int64_t between(std::int64_t first, std::int64_t last);
    bool oneIn(std::uint64_t count) { return below(count) == 0; }
    /// From 0 up to, but not including, 1.
    double fraction() { return static_cast<double>(engine_() >> 11U) * 0x1.0p-53; }
    double fraction(double first, double last) { return first + (last - first) * fraction(); }

    /// A version 4 UUID of RFC 4122 in upper-case letters.
    std::string uuid();

    template <typename Value>
    const Value& pick(const std::vector<Value>& values) {
        return values[below(values.size())];
    }

private:
    std::mt19937_64 engine_;
};

} // namespace quillbook::sample
