#include "contacts/ContactIndex.h"

#include "core/text/UTF8.h"
#include "core/text/UnicodeCategories.h"

#include <algorithm>

namespace quillbook {
namespace {

constexpr std::size_t fewestDigits = 7;
// A number without its country code has ten digits in the plans that people write without one.
constexpr std::size_t suffixDigits = 10;
// Country codes have up to three digits (ITU-T E.164); numbers whose lengths differ by more are two numbers.
constexpr std::size_t tooManyDigitsApart = 4;

/// The digits of an address, each as it stands there.
struct Digits {
    std::string text;
    std::vector<std::size_t> starts; ///< Where each digit begins in `text`.
};

Digits digitsOf(std::string_view address) {
    Digits digits;
    while (!address.empty()) {
        const char32_t scalar = takeScalar(address);
        if (!isNumber(scalar)) continue;
        digits.starts.push_back(digits.text.size());
        appendScalar(digits.text, scalar);
    }
    return digits;
}

} // namespace

std::optional<AddressKeys> addressKeys(std::string_view address) {
    const std::string_view trimmed = trimmedWhitespace(address);
    if (trimmed.empty()) return std::nullopt;
    if (trimmed.find('@') != std::string_view::npos)
        return AddressKeys{"email:" + lowercased(trimmed), {}, 0};
    const Digits digits = digitsOf(trimmed);
    const std::size_t count = digits.starts.size();
    if (count < fewestDigits) return std::nullopt;
    AddressKeys keys{"phone:" + digits.text, {}, count};
    if (count >= suffixDigits) {
        keys.suffix = "phone-suffix:" + digits.text.substr(digits.starts[count - suffixDigits]);
    }
    return keys;
}

ContactIndex::ContactIndex(std::span<const ContactRecord> records) {
    identities_.reserve(records.size());
    for (const ContactRecord& record : records) {
        identities_.push_back(record.identity);
        for (const std::string& address : record.addresses) {
            if (const auto keys = addressKeys(address)) add(*keys, identities_.size() - 1);
        }
    }
}

void ContactIndex::add(const AddressKeys& keys, std::size_t owner) {
    claim(exact_, keys.exact, owner);
    if (!keys.suffix) return;
    if (claim(suffixes_, *keys.suffix, owner)) {
        suffixDigitCounts_[*keys.suffix] = keys.digitCount;
    } else {
        suffixDigitCounts_.erase(*keys.suffix);
    }
}

bool ContactIndex::claim(Claims& claims, const std::string& key, std::size_t owner) const {
    if (claims.ambiguous.contains(key)) return false;
    const auto [place, isNew] = claims.owners.try_emplace(key, owner);
    if (isNew || identities_[place->second] == identities_[owner]) return true;
    claims.owners.erase(place);
    claims.ambiguous.insert(key);
    return false;
}

const ContactIdentity* ContactIndex::find(std::string_view address) const {
    const auto keys = addressKeys(address);
    if (!keys) return nullptr;
    // Ten digits have no country code that would tell two numbers apart, so they go by the suffix alone.
    if (keys->digitCount != suffixDigits) {
        const auto owner = exact_.owners.find(keys->exact);
        if (owner != exact_.owners.end()) return &identities_[owner->second];
    }
    if (!keys->suffix) return nullptr;
    const auto owner = suffixes_.owners.find(*keys->suffix);
    if (owner == suffixes_.owners.end()) return nullptr;
    const std::size_t stored = suffixDigitCounts_.at(*keys->suffix);
    const auto [fewer, more] = std::minmax(stored, keys->digitCount);
    return more - fewer < tooManyDigitsApart ? &identities_[owner->second] : nullptr;
}

} // namespace quillbook
