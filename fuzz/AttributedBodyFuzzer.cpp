#include "core/text/UTF8.h"
#include "core/text/UnicodeCategories.h"
#include "fuzz/Harness.h"
#include "store/AttributedBodyDecoder.h"
#include "store/KeyedArchiveText.h"

namespace quillbook {
namespace {

bool hasForbiddenControl(std::string_view text) {
    while (!text.empty()) {
        const char32_t scalar = takeScalar(text);
        if (isControl(scalar) && scalar != '\t' && scalar != '\n' && scalar != '\r') return true;
    }
    return false;
}

void checkBody(const AttributedBodyDecoder::Body& body, std::span<const std::uint8_t> blob) {
    const std::string_view bytes(reinterpret_cast<const char*>(blob.data()), blob.size());
    const auto state = body.payloadState;
    if (!body.text) {
        fuzz::require((state == MessagePayloadState::decoded) == blob.empty(),
                      "only an empty blob is decoded without text");
        fuzz::require(state != MessagePayloadState::partiallyDecoded, "what is partially decoded is text");
        return;
    }
    fuzz::require(isValidUTF8(*body.text), "a body is UTF-8");
    fuzz::require(state != MessagePayloadState::unsupported, "what is unsupported has no text");
    if (state == MessagePayloadState::partiallyDecoded)
        fuzz::require(*body.text == bytes, "a plain body is the whole blob");
    if (const auto keyed = keyedArchiveText(blob)) {
        fuzz::require(*keyed == *body.text, "a keyed archive's text comes first");
        return;
    }
    fuzz::require(!body.text->empty() && !hasForbiddenControl(*body.text),
                  "a body has no control characters");
    fuzz::require(bytes.find(*body.text) != std::string_view::npos, "a body's text stands in the blob");
}

} // namespace
} // namespace quillbook

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quillbook;
    const std::span<const std::uint8_t> blob(data, size);
    const AttributedBodyDecoder decoder;
    const auto body = decoder.decode(blob);
    fuzz::require(body == decoder.decode(blob), "a blob gives the same body each time");
    checkBody(body, blob);
    return 0;
}
