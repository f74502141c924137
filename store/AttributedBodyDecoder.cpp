#include "store/AttributedBodyDecoder.h"

#include "core/text/UTF8.h"
#include "store/KeyedArchiveText.h"
#include "typedstream/TypedStreamDecoder.h"

#include <algorithm>

namespace quillbook {
namespace {

constexpr std::string_view marker = "streamtyped";
constexpr std::size_t markerWindow = 32;
constexpr std::string_view openingPair = "\x01\x2B";
constexpr std::string_view closingPair = "\x86\x84";
constexpr unsigned char twoByteLength = 0x81;

unsigned char byteAt(std::string_view bytes, std::size_t index) {
    return static_cast<unsigned char>(bytes[index]);
}

/// Category Cc without tab, line feed and carriage return. Unicode's stability policy fixes Cc to U+0000 to
/// U+001F and U+007F to U+009F, which `text`, being UTF-8, writes as single bytes and as C2 80 to C2 9F.
bool hasForbiddenControl(std::string_view text) {
    for (std::size_t index = 0; index < text.size(); ++index) {
        const unsigned char byte = byteAt(text, index);
        if (byte == 0xC2 && byteAt(text, index + 1) < 0xA0) return true;
        if (byte == 0x7F) return true;
        if (byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r') return true;
    }
    return false;
}

/// Where the marker ends, if it begins inside the window.
std::optional<std::size_t> endOfMarker(std::string_view blob) {
    const auto start = blob.substr(0, markerWindow + marker.size() - 1).find(marker);
    if (start == std::string_view::npos) return std::nullopt;
    return start + marker.size();
}

/// What stands behind the length that a frame begins with, if it is exactly as long as that.
std::string_view framedBytes(std::string_view frame) {
    if (frame.empty()) return {};
    std::size_t prefix = 1;
    std::size_t length = byteAt(frame, 0);
    if (length == twoByteLength && frame.size() >= 3) {
        prefix = 3;
        length = byteAt(frame, 1) + 256U * byteAt(frame, 2);
    } else if (length >= 0x80) {
        return {};
    }
    // A pair that occurs by chance inside the text makes a shorter frame; that is refused, never cut.
    return frame.size() - prefix == length ? frame.substr(prefix) : std::string_view();
}

/// The usual layout: the string's bytes between two fixed pairs. Needs no parsing and survives what the
/// decoder would refuse.
std::optional<std::string> framedText(std::string_view blob, std::size_t start) {
    const auto opening = blob.find(openingPair, start);
    if (opening == std::string_view::npos) return std::nullopt;
    const auto frame = opening + openingPair.size();
    const auto closing = blob.find(closingPair, frame);
    if (closing == std::string_view::npos) return std::nullopt;
    return checkedText(framedBytes(blob.substr(frame, closing - frame)));
}

bool isStringObject(const typedstream::Archivable& item) {
    const auto* object = std::get_if<typedstream::ObjectItem>(&item);
    return object != nullptr && (object->type.name == "NSString" || object->type.name == "NSMutableString");
}

/// The text of the first string object of the archive; later ones are attribute names and the like.
std::optional<std::string> objectText(std::span<const std::uint8_t> blob) {
    try {
        const auto items = TypedStreamDecoder::decode(blob);
        const auto found = std::find_if(items.begin(), items.end(), isStringObject);
        if (found == items.end()) return std::nullopt;
        const auto& values = std::get<typedstream::ObjectItem>(*found).values;
        const auto* text = values.empty() ? nullptr : std::get_if<std::string>(&values.front());
        return text == nullptr ? std::nullopt : checkedText(*text);
    } catch (const TypedStreamDecoderError&) {
        return std::nullopt;
    }
}

AttributedBodyDecoder::Body body(std::optional<std::string> text, MessagePayloadState stateOfText) {
    const auto state = text ? stateOfText : MessagePayloadState::unsupported;
    return {std::move(text), state};
}

} // namespace

std::optional<std::string> checkedText(std::string_view bytes) {
    if (bytes.empty() || !isValidUTF8(bytes) || hasForbiddenControl(bytes)) return std::nullopt;
    return std::string(bytes);
}

AttributedBodyDecoder::Body
AttributedBodyDecoder::decode(std::optional<std::span<const std::uint8_t>> blob) const {
    if (!blob || blob->empty()) return {};
    if (auto text = keyedArchiveText(*blob)) return {std::move(text), MessagePayloadState::decoded};
    const std::string_view bytes(reinterpret_cast<const char*>(blob->data()), blob->size());
    const auto start = endOfMarker(bytes);
    if (!start) return body(checkedText(bytes), MessagePayloadState::partiallyDecoded);
    auto text = framedText(bytes, *start);
    if (!text) text = objectText(*blob);
    return body(std::move(text), MessagePayloadState::decoded);
}

} // namespace quillbook
