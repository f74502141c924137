#include "export/ScriptEscaper.h"

#include "core/text/UTF8.h"
#include "export/ByteSet.h"

#include <algorithm>

namespace quillbook {
namespace {

// U+2028 and U+2029 are E2 80 A8 and E2 80 A9.
constexpr ByteSet carefulBytes("&<>\xE2");

std::string_view replacement(std::string_view rest) {
    switch (rest[0]) {
    case '&':
        return "\\u0026";
    case '<':
        return "\\u003C";
    case '>':
        return "\\u003E";
    default:
        break;
    }
    if (rest.starts_with("\xE2\x80\xA8")) return "\\u2028";
    if (rest.starts_with("\xE2\x80\xA9")) return "\\u2029";
    return {};
}

/// `text` holds whole characters only.
void appendEscaped(std::string& script, std::string_view text) {
    std::size_t start = 0;
    std::size_t index = carefulBytes.firstIn(text);
    while (index < text.size()) {
        const std::string_view escape = replacement(text.substr(index));
        if (!escape.empty()) {
            script.append(text, start, index - start);
            script += escape;
            start = index + (escape[2] == '2' ? 3 : 1);
        }
        index = carefulBytes.firstIn(text, std::max(start, index + 1));
    }
    script.append(text, start);
}

void appendRepaired(std::string& script, std::string_view text) {
    if (isValidUTF8(text)) return appendEscaped(script, text);
    appendEscaped(script, repairedUTF8(text));
}

constexpr bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80;
}

/// Length of the character that a leading byte announces; 1 for every other byte (RFC 3629, section 3).
constexpr std::size_t announcedLength(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    if (code >= 0xF0) return 4;
    if (code >= 0xE0) return 3;
    return code >= 0xC0 ? 2 : 1;
}

/// How many bytes at the end begin a character that more bytes could complete.
std::size_t cutOffLength(std::string_view text) {
    for (std::size_t length = 1; length <= std::min<std::size_t>(text.size(), 3); ++length) {
        const char byte = text[text.size() - length];
        if (!isContinuation(byte)) return announcedLength(byte) > length ? length : 0;
    }
    return 0;
}

} // namespace

void ScriptEscaper::append(std::string& script, std::string_view piece) {
    std::string_view text = piece;
    if (!heldBack_.empty()) text = joined_.assign(heldBack_).append(piece);
    const std::size_t whole = text.size() - cutOffLength(text);
    appendRepaired(script, text.substr(0, whole));
    heldBack_ = text.substr(whole);
}

void ScriptEscaper::finish(std::string& script) {
    appendRepaired(script, heldBack_);
    heldBack_.clear();
}

std::string escapeForScript(std::string_view json) {
    std::string script;
    script.reserve(json.size());
    ScriptEscaper escaper;
    escaper.append(script, json);
    escaper.finish(script);
    return script;
}

} // namespace quillbook
