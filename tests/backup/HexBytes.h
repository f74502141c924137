#pragma once

#include "core/records/ConversationSummary.h"

#include <charconv>
#include <stdexcept>
#include <string_view>

namespace quillbook::test {

/// The bytes of pairs of hexadecimal digits, as published test vectors are written.
inline Data bytesOfHex(std::string_view digits) {
    Data bytes;
    for (; !digits.empty(); digits.remove_prefix(2)) {
        const auto pair = digits.substr(0, 2);
        const auto result = std::from_chars(pair.data(), pair.data() + pair.size(), bytes.emplace_back(), 16);
        if (result.ptr != pair.data() + 2) throw std::invalid_argument("no pair of hexadecimal digits");
    }
    return bytes;
}

inline Data bytesOfText(std::string_view text) {
    return {text.begin(), text.end()};
}

} // namespace quillbook::test
