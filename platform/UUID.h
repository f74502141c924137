#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include <stdlib.h>

namespace quillbook {

/// A new random identifier in the text form of RFC 4122, version 4, in lower case.
inline std::string uuidText() {
    constexpr std::string_view digits = "0123456789abcdef";
    std::array<std::uint8_t, 16> bytes{};
    ::arc4random_buf(bytes.data(), bytes.size()); // The kernel's random numbers, without a failure to handle.
    // RFC 4122, section 4.4: the version's four bits and the variant's two.
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0FU) | 0x40U);
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3FU) | 0x80U);
    std::string text;
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        if (index == 4 || index == 6 || index == 8 || index == 10) text += '-';
        text += digits[bytes[index] >> 4U];
        text += digits[bytes[index] & 0x0FU];
    }
    return text;
}

} // namespace quillbook
