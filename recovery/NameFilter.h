#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace quillbook {

/// A set of names that may take a stranger for one of its own, a few in a thousand. It is small enough for
/// the processor's caches where a table of the names is not: most of a million names are turned away in a
/// fraction of the time that the table would take.
class NameFilter {
public:
    /// For about so many names.
    explicit NameFilter(std::size_t names);

    void add(std::string_view name);
    /// True for every name that was added.
    bool mayHold(std::string_view name) const;

private:
    bool holds(std::uint64_t bit) const;

    std::uint64_t mask_; ///< The number of bits is a power of two.
    std::vector<std::uint64_t> words_;
};

} // namespace quillbook
