#include "core/text/UnicodeCategories.h"

#include "core/text/UTF8.h"

#include <algorithm>

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/uchar.h>

namespace quillbook {
namespace {

bool hasCategory(char32_t scalar, std::uint32_t mask) {
    return (U_GET_GC_MASK(static_cast<UChar32>(scalar)) & mask) != 0;
}

} // namespace

bool isControl(char32_t scalar) {
    return hasCategory(scalar, U_GC_CC_MASK);
}

bool isControlOrFormat(char32_t scalar) {
    return hasCategory(scalar, U_GC_CC_MASK | U_GC_CF_MASK);
}

bool isAlphanumeric(char32_t scalar) {
    return hasCategory(scalar, U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK);
}

bool isLetter(char32_t scalar) {
    return hasCategory(scalar, U_GC_L_MASK);
}

bool isNumber(char32_t scalar) {
    return hasCategory(scalar, U_GC_N_MASK);
}

bool isWhitespaceOrNewline(char32_t scalar) {
    return (scalar >= 0x09 && scalar <= 0x0D) || scalar == 0x85 || hasCategory(scalar, U_GC_Z_MASK);
}

std::string_view trimmedWhitespace(std::string_view text) {
    std::size_t first = text.size();
    std::size_t last = 0;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t start = text.size() - rest.size();
        if (isWhitespaceOrNewline(takeScalar(rest))) continue;
        first = std::min(first, start);
        last = text.size() - rest.size();
    }
    return first < last ? text.substr(first, last - first) : std::string_view();
}

std::string_view trimmedBlanksAndPoints(std::string_view text) {
    const auto first = text.find_first_not_of(" .");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" .") - first + 1);
}

std::string lowercased(std::string_view text) {
    std::string lower;
    icu::StringByteSink<std::string> sink(&lower, static_cast<int32_t>(text.size()));
    UErrorCode status = U_ZERO_ERROR;
    icu::CaseMap::utf8ToLower("", 0, icu::StringPiece(text.data(), static_cast<int32_t>(text.size())), sink,
                              nullptr, status);
    return U_SUCCESS(status) ? lower : std::string(text);
}

} // namespace quillbook
