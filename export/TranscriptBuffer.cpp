#include "export/TranscriptBuffer.h"

namespace quillbook {
namespace {

constexpr std::size_t fullSize = 0x10000;

} // namespace

TranscriptBuffer::TranscriptBuffer(const std::filesystem::path& file) : writer_(file) {
    text_.reserve(fullSize * 2);
}

void TranscriptBuffer::writeAhead(std::string_view bytes) {
    writer_.write(bytes);
}

void TranscriptBuffer::endBlock() {
    if (text_.size() >= fullSize) flush();
}

void TranscriptBuffer::finish() {
    if (!text_.empty()) flush();
}

void TranscriptBuffer::flush() {
    writer_.write(text_);
    text_.clear();
}

} // namespace quillbook
