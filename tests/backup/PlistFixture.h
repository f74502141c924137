#pragma once

#include "backup/BinaryPlist.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillbook::test {

inline BinaryPlist parsed(const std::string& bytes) {
    return BinaryPlist::parse({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

/// Nothing for bytes that are read.
inline std::optional<BinaryPlistError> errorOf(const std::string& bytes) {
    try {
        parsed(bytes);
        return std::nullopt;
    } catch (const BinaryPlistError& error) {
        return error;
    }
}

inline std::optional<BinaryPlistError::Reason> reasonOf(const std::string& bytes) {
    const auto error = errorOf(bytes);
    return error ? std::optional<BinaryPlistError::Reason>(error->reason) : std::nullopt;
}

inline PlistValue boolean(bool value) {
    return {value};
}
inline PlistValue integer(std::int64_t value) {
    return {value};
}
inline PlistValue real(double value) {
    return {value};
}
inline PlistValue string(std::string value) {
    return {PlistString(std::move(value))};
}
inline PlistValue blob(std::string_view value) {
    return {PlistData(Data(value.begin(), value.end()))};
}
inline PlistValue uid(std::int64_t value) {
    return {PlistUID{value}};
}
inline PlistValue array(std::vector<PlistValue> values) {
    return {PlistArray(std::move(values))};
}
inline PlistValue dictionary(std::vector<PlistEntries::Entry> pairs) {
    return {PlistDictionary(PlistEntries(std::move(pairs)))};
}
inline PlistValue null() {
    return {PlistNull()};
}

} // namespace quillbook::test
