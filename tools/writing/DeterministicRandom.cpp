#include "tools/writing/DeterministicRandom.h"

namespace quillbook::sample {
namespace {

/// FNV-1a over the subject, so that the order in which subjects are made does not matter.
std::uint64_t mixed(std::uint64_t seed, std::string_view subject) {
    std::uint64_t hash = 0xCBF29CE484222325ULL;
    for (const char letter : subject)
        hash = (hash ^ static_cast<unsigned char>(letter)) * 0x100000001B3ULL;
    return hash ^ (seed * 0x9E3779B97F4A7C15ULL);
}

} // namespace

DeterministicRandom::DeterministicRandom(std::uint64_t seed, std::string_view subject)
    : engine_(mixed(seed, subject)) {}

std::int64_t DeterministicRandom::between(std::int64_t first, std::int64_t last) {
    return first + static_cast<std::int64_t>(below(static_cast<std::uint64_t>(last - first) + 1));
}

std::string DeterministicRandom::uuid() {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const std::uint64_t high = (engine_() & 0xFFFFFFFFFFFF0FFFULL) | 0x4000ULL;
    const std::uint64_t low = (engine_() & 0x3FFFFFFFFFFFFFFFULL) | 0x8000000000000000ULL;
    std::string text;
    text.reserve(36);
    for (unsigned index = 0; index < 32; ++index) {
        if (index == 8 || index == 12 || index == 16 || index == 20) text += '-';
        const std::uint64_t half = index < 16 ? high : low;
        text += digits[(half >> (60U - 4U * (index % 16))) & 0xFU];
    }
    return text;
}

} // namespace quillbook::sample
