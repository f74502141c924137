#include "core/records/JSONWriter.h"

#include "core/records/Base64.h"
#include "core/text/ISO8601.h"

#include <array>
#include <cassert>
#include <charconv>
#include <cmath>
#include <utility>

namespace quillbook {
namespace {

constexpr std::size_t flushSize = 0x10000;
constexpr std::string_view hexDigits = "0123456789abcdef";

/// RFC 8259, section 7: quotation mark, reverse solidus and the control characters below U+0020 must be
/// escaped.
constexpr std::array<bool, 256> mustEscape = [] {
    std::array<bool, 256> table{};
    for (std::size_t code = 0; code < 0x20; ++code)
        table[code] = true;
    table['"'] = true;
    table['\\'] = true;
    return table;
}();

void appendEscaped(std::string& json, char character) {
    switch (character) {
    case '"':
        json += "\\\"";
        return;
    case '\\':
        json += "\\\\";
        return;
    case '\b':
        json += "\\b";
        return;
    case '\f':
        json += "\\f";
        return;
    case '\n':
        json += "\\n";
        return;
    case '\r':
        json += "\\r";
        return;
    case '\t':
        json += "\\t";
        return;
    default:
        break;
    }
    const auto code = static_cast<unsigned char>(character);
    json += "\\u00";
    json += hexDigits[code >> 4U];
    json += hexDigits[code & 0xFU];
}

} // namespace

void appendJSONString(std::string& json, std::string_view text) {
    json += '"';
    std::size_t start = 0;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (!mustEscape[static_cast<unsigned char>(text[index])]) continue;
        json.append(text, start, index - start);
        appendEscaped(json, text[index]);
        start = index + 1;
    }
    json.append(text, start);
    json += '"';
}

JSONWriter::JSONWriter(Sink sink, JSONForm form) : sink_(std::move(sink)), form_(form) {
    buffer_.reserve(flushSize * 2);
}

void JSONWriter::beginObject() {
    begin('{');
}

void JSONWriter::endObject() {
    end('}');
}

void JSONWriter::beginArray() {
    begin('[');
}

void JSONWriter::endArray() {
    end(']');
}

void JSONWriter::key(std::string_view name) {
    assert(depth_ > 0 && !isBehindKey_);
    std::string& last = lastKeys_[depth_ - 1];
    assert((isFirst_ || last < name) && "keys must ascend");
    last = name;
    beginValue();
    appendJSONString(buffer_, name);
    buffer_ += form_ == JSONForm::pretty ? " : " : ":";
    isBehindKey_ = true;
}

void JSONWriter::value(std::string_view text) {
    beginValue();
    appendJSONString(buffer_, text);
    flushIfFull();
}

void JSONWriter::value(std::int64_t number) {
    beginValue();
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    buffer_.append(digits.data(), end);
    flushIfFull();
}

void JSONWriter::value(double number) {
    assert(std::isfinite(number));
    beginValue();
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    buffer_.append(digits.data(), end);
    flushIfFull();
}

void JSONWriter::value(bool truth) {
    beginValue();
    buffer_ += truth ? "true" : "false";
    flushIfFull();
}

void JSONWriter::value(Date date) {
    value(std::string_view(iso8601Seconds(date)));
}

void JSONWriter::value(std::span<const std::uint8_t> bytes) {
    value(std::string_view(base64(bytes)));
}

void JSONWriter::finish() {
    assert(depth_ == 0);
    if (!buffer_.empty()) sink_(buffer_);
    buffer_.clear();
}

void JSONWriter::beginValue() {
    if (isBehindKey_) {
        isBehindKey_ = false;
        return;
    }
    if (!isFirst_) buffer_ += ',';
    if (depth_ > 0) newLine();
    isFirst_ = false;
}

void JSONWriter::begin(char bracket) {
    beginValue();
    buffer_ += bracket;
    if (lastKeys_.size() == depth_) lastKeys_.emplace_back();
    ++depth_;
    isFirst_ = true;
}

void JSONWriter::end(char bracket) {
    assert(depth_ > 0 && !isBehindKey_);
    --depth_;
    if (!isFirst_) newLine();
    buffer_ += bracket;
    isFirst_ = false;
    flushIfFull();
}

void JSONWriter::newLine() {
    if (form_ == JSONForm::compact) return;
    buffer_ += '\n';
    buffer_.append(depth_ * 2, ' ');
}

void JSONWriter::flushIfFull() {
    if (buffer_.size() < flushSize) return;
    sink_(buffer_);
    buffer_.clear();
}

} // namespace quillbook
