#include "backup/PlistValue.h"

#include <algorithm>

namespace quillbook {

PlistEntries::PlistEntries(std::vector<Entry> pairs) : entries_(std::move(pairs)) {
    const auto isBefore = [](const Entry& one, const Entry& other) { return *one.key < *other.key; };
    const auto isSameKey = [](const Entry& one, const Entry& other) { return one.key == other.key; };
    // Last to first, so that the last of equal keys is the one that stays.
    std::reverse(entries_.begin(), entries_.end());
    std::stable_sort(entries_.begin(), entries_.end(), isBefore);
    entries_.erase(std::unique(entries_.begin(), entries_.end(), isSameKey), entries_.end());
}

const PlistValue* PlistEntries::find(std::string_view key) const {
    const auto isBefore = [](const Entry& entry, std::string_view wanted) { return *entry.key < wanted; };
    const auto found = std::lower_bound(entries_.begin(), entries_.end(), key, isBefore);
    return found != entries_.end() && *found->key == key ? &found->value : nullptr;
}

} // namespace quillbook
