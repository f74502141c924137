#include "core/records/Base64.h"

#include <algorithm>

namespace quillbook {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

} // namespace

std::string base64(std::span<const std::uint8_t> bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    while (!bytes.empty()) {
        const std::size_t count = std::min<std::size_t>(bytes.size(), 3);
        std::uint32_t group = 0;
        for (std::size_t index = 0; index < 3; ++index)
            group = group << 8U | (index < count ? bytes[index] : 0U);
        for (std::size_t digit = 0; digit < 4; ++digit) {
            text += digit <= count ? alphabet[group >> (18 - 6 * digit) & 0x3FU] : '=';
        }
        bytes = bytes.subspan(count);
    }
    return text;
}

std::optional<Data> decodeBase64(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    Data bytes;
    bytes.reserve(text.size() / 4 * 3);
    while (!text.empty()) {
        const bool isLast = text.size() == 4;
        const std::size_t padding = !isLast || text[3] != '=' ? 0 : text[2] != '=' ? 1 : 2;
        std::uint32_t group = 0;
        for (std::size_t digit = 0; digit < 4 - padding; ++digit) {
            const auto value = alphabet.find(text[digit]);
            if (value == std::string_view::npos) return std::nullopt;
            group |= static_cast<std::uint32_t>(value) << (18 - 6 * digit);
        }
        for (std::size_t index = 0; index < 3 - padding; ++index) {
            bytes.push_back(static_cast<std::uint8_t>(group >> (16 - 8 * index)));
        }
        // The bits behind the last byte must be zero, or two texts would stand for one buffer.
        if (padding > 0 && (group & ((1U << (8 * padding)) - 1U)) != 0) return std::nullopt;
        text.remove_prefix(4);
    }
    return bytes;
}

} // namespace quillbook
