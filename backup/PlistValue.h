#pragma once

#include "core/records/ConversationSummary.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace quillbook {

/// A payload that copies share, compared by what it holds. It never changes, so any thread may read it.
template <typename Payload>
class SharedPayload {
public:
    SharedPayload(Payload payload) : payload_(std::make_shared<const Payload>(std::move(payload))) {}

    const Payload& operator*() const { return *payload_; }
    const Payload* operator->() const { return payload_.get(); }
    bool operator==(const SharedPayload& other) const {
        return payload_ == other.payload_ || *payload_ == *other.payload_;
    }

private:
    std::shared_ptr<const Payload> payload_;
};

/// A number of an object: of one in the file's own list, or of one in a keyed archive's "$objects".
struct PlistUID {
    std::int64_t number = 0;

    bool operator==(const PlistUID&) const = default;
};

struct PlistNull {
    bool operator==(const PlistNull&) const = default;
};

struct PlistValue;
class PlistEntries;

using PlistString = SharedPayload<std::string>; ///< Valid UTF-8.
using PlistData = SharedPayload<Data>;
using PlistArray = SharedPayload<std::vector<PlistValue>>;
using PlistDictionary = SharedPayload<PlistEntries>;

/// One object of a property list. A date is the real that is stored, with no epoch applied.
struct PlistValue {
    std::variant<bool, std::int64_t, double, PlistString, PlistData, PlistUID, PlistArray, PlistDictionary,
                 PlistNull>
        content = PlistNull();

    /// Null for a value of another case.
    template <typename Case>
    const Case* as() const {
        return std::get_if<Case>(&content);
    }
    bool operator==(const PlistValue&) const = default;
};

/// The pairs of a dictionary, in the order of their keys' bytes.
class PlistEntries {
public:
    struct Entry {
        PlistString key;
        PlistValue value;

        bool operator==(const Entry&) const = default;
    };

    /// Of pairs with one key the last counts.
    explicit PlistEntries(std::vector<Entry> pairs);

    /// Null for a key that is not there.
    const PlistValue* find(std::string_view key) const;

    std::size_t size() const { return entries_.size(); }
    auto begin() const { return entries_.begin(); }
    auto end() const { return entries_.end(); }
    bool operator==(const PlistEntries&) const = default;

private:
    std::vector<Entry> entries_;
};

} // namespace quillbook
