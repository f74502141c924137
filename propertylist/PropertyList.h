#pragma once

#include "core/records/ConversationSummary.h"
#include "core/text/Date.h"
#include "propertylist/PropertyListGuard.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quillbook {

/// A property list, XML or binary, whose values are asked for by key and type. A value that never changes:
/// copies share the list, and any number of threads may read it.
class PropertyList {
public:
    /// `name` is for the words of the error. Throws PropertyListError for bytes that are no property list,
    /// have more than `maximumBytes`, or would cost out of proportion to read (PropertyListGuard.h).
    PropertyList(std::string_view bytes, const std::string& name,
                 std::size_t maximumBytes = longestPropertyList);

    /// Whether the top value is a dictionary. Where it is none, all that follow find nothing.
    bool isDictionary() const;
    bool hasKey(const char* key) const;

    /// The value of a key, if it is of the asked kind.
    std::optional<std::string> string(const char* key) const; ///< UTF-8, repaired where it was broken.
    std::optional<bool> boolean(const char* key) const;
    /// 64 bits in two's complement: an unsigned number past the signed ones comes out negative.
    std::optional<std::int64_t> integer(const char* key) const;
    std::optional<Data> data(const char* key) const;
    std::optional<Date> date(const char* key) const; ///< A date without a finite number is none.

private:
    std::shared_ptr<void> top_;
};

} // namespace quillbook
