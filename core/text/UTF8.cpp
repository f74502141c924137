#include "core/text/UTF8.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include <unicode/utf8.h>

namespace quillbook {
namespace {

constexpr char32_t replacementCharacter = 0xFFFD;

/// Length of the ASCII run at the front, eight bytes at a time.
std::size_t asciiPrefixLength(std::string_view bytes) {
    std::size_t length = 0;
    for (; bytes.size() - length >= 8; length += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + length, 8);
        if ((word & 0x8080808080808080ULL) != 0) break;
    }
    while (length < bytes.size() && (static_cast<unsigned char>(bytes[length]) & 0x80U) == 0)
        ++length;
    return length;
}

/// The scalar at `index`, negative when ill-formed; `index` moves behind it. ICU counts in 32 bits, so it
/// sees a short window.
UChar32 nextScalar(std::string_view bytes, std::size_t& index) {
    const auto window = static_cast<std::int32_t>(std::min<std::size_t>(bytes.size() - index, 8));
    const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data() + index);
    std::int32_t offset = 0;
    UChar32 scalar = 0;
    U8_NEXT(data, offset, window, scalar);
    index += static_cast<std::size_t>(offset);
    return scalar;
}

} // namespace

bool isValidUTF8(std::string_view bytes) {
    std::size_t index = 0;
    while (true) {
        index += asciiPrefixLength(bytes.substr(index));
        if (index == bytes.size()) return true;
        if (nextScalar(bytes, index) < 0) return false;
    }
}

std::string repairedUTF8(std::string_view bytes) {
    if (isValidUTF8(bytes)) return std::string(bytes);
    std::string text;
    text.reserve(bytes.size());
    for (std::size_t index = 0; index < bytes.size();) {
        const UChar32 scalar = nextScalar(bytes, index);
        appendScalar(text, scalar < 0 ? replacementCharacter : static_cast<char32_t>(scalar));
    }
    return text;
}

char32_t takeScalar(std::string_view& rest) {
    assert(!rest.empty());
    std::size_t index = 0;
    const UChar32 scalar = nextScalar(rest, index);
    rest.remove_prefix(index);
    return scalar < 0 ? replacementCharacter : static_cast<char32_t>(scalar);
}

void appendScalar(std::string& text, char32_t scalar) {
    std::uint8_t units[4];
    std::int32_t length = 0;
    UBool isError = 0;
    U8_APPEND(units, length, 4, static_cast<UChar32>(scalar), isError);
    if (isError) return appendScalar(text, replacementCharacter);
    text.append(reinterpret_cast<const char*>(units), static_cast<std::size_t>(length));
}

} // namespace quillbook
