#include "recovery/NameFilter.h"

#include <bit>
#include <functional>

namespace quillbook {
namespace {

constexpr std::size_t bitsPerName = 32;
constexpr std::size_t bitsPerWord = 64;

std::uint64_t hashOf(std::string_view name) {
    return std::hash<std::string_view>()(name);
}

/// The second bit of a name, from the half of its hash that the first one leaves out.
std::uint64_t otherHalf(std::uint64_t hash) {
    return std::rotl(hash, 32);
}

} // namespace

NameFilter::NameFilter(std::size_t names)
    : mask_(std::bit_ceil((names + 2) * bitsPerName) - 1), words_((mask_ + 1) / bitsPerWord) {}

void NameFilter::add(std::string_view name) {
    const std::uint64_t hash = hashOf(name);
    for (const std::uint64_t bit : {hash & mask_, otherHalf(hash) & mask_})
        words_[bit / bitsPerWord] |= std::uint64_t{1} << (bit % bitsPerWord);
}

bool NameFilter::mayHold(std::string_view name) const {
    const std::uint64_t hash = hashOf(name);
    return holds(hash & mask_) && holds(otherHalf(hash) & mask_);
}

bool NameFilter::holds(std::uint64_t bit) const {
    return ((words_[bit / bitsPerWord] >> (bit % bitsPerWord)) & 1U) != 0;
}

} // namespace quillbook
