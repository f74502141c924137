#pragma once

#include "core/interfaces/ContactResolving.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quillbook {

/// One contact that has at least one address.
struct ContactRecord {
    std::vector<std::string> addresses; ///< E-mail addresses and phone numbers as the user wrote them.
    ContactIdentity identity;

    bool operator==(const ContactRecord&) const = default;
};

/// What an address is found by.
struct AddressKeys {
    std::string exact; ///< "email:" or "phone:" and the address without its punctuation.
    std::optional<std::string>
        suffix;                 ///< "phone-suffix:" and the last ten digits; only where there are as many.
    std::size_t digitCount = 0; ///< 0 for an e-mail address.

    bool operator==(const AddressKeys&) const = default;
};

/// Nothing for what is no address: blank texts and numbers of fewer than seven digits, such as short codes.
std::optional<AddressKeys> addressKeys(std::string_view address);

/// Finds the person behind an address, however the number is written. It rather finds nobody than the wrong
/// one: a key that two different identities claim belongs to neither.
class ContactIndex {
public:
    ContactIndex() = default;
    explicit ContactIndex(std::span<const ContactRecord> records);

    /// Null where nobody is found. The identity lives as long as the index.
    const ContactIdentity* find(std::string_view address) const;

private:
    /// The keys of one kind.
    struct Claims {
        std::unordered_map<std::string, std::size_t> owners; ///< To a place in `identities_`.
        std::unordered_set<std::string> ambiguous;
    };

    void add(const AddressKeys& keys, std::size_t owner);
    /// Whether the key is `owner`'s now.
    bool claim(Claims& claims, const std::string& key, std::size_t owner) const;

    std::vector<ContactIdentity> identities_;
    Claims exact_;
    Claims suffixes_;
    std::unordered_map<std::string, std::size_t>
        suffixDigitCounts_; ///< Of the number behind each suffix key.
};

} // namespace quillbook
