#include "typedstream/TypedStreamReader.h"

#include "core/text/UTF8.h"
#include "typedstream/TypedStreamDecoderError.h"

#include <bit>
#include <string_view>

namespace quillbook::typedstream {

void TypedStreamReader::failOutOfBounds(std::uint64_t index) const {
    throw TypedStreamDecoderError(TypedStreamDecoderError::OutOfBounds{index, length()});
}

std::uint8_t TypedStreamReader::current() const {
    if (isAtEnd()) failOutOfBounds(index_);
    return bytes_[index_];
}

std::uint8_t TypedStreamReader::following() const {
    if (isAtEnd() || bytes_.size() - index_ < 2) failOutOfBounds(index_ + 1);
    return bytes_[index_ + 1];
}

void TypedStreamReader::skipAll(std::uint8_t byte) {
    while (!isAtEnd() && bytes_[index_] == byte)
        ++index_;
}

std::span<const std::uint8_t> TypedStreamReader::readBytes(std::uint64_t count) {
    if (index_ > length() || count > length() - index_) failOutOfBounds(index_ + count);
    const auto part = bytes_.subspan(index_, count);
    index_ += count;
    return part;
}

template <class Number>
Number TypedStreamReader::readLittleEndian() {
    Number number = 0;
    unsigned shift = 0;
    for (const std::uint8_t byte : readBytes(sizeof(Number))) {
        number = static_cast<Number>(number | (static_cast<Number>(byte) << shift));
        shift += 8;
    }
    return number;
}

std::uint64_t TypedStreamReader::readUnsignedInt() {
    const std::uint8_t byte = current();
    skip();
    if (byte == I_16) return readLittleEndian<std::uint16_t>();
    if (byte == I_32) return readLittleEndian<std::uint32_t>();
    return byte;
}

std::int64_t TypedStreamReader::readSignedInt() {
    // A byte of the reference range is a value only right before END; a run of them before an integer is
    // passed over.
    while (true) {
        const std::uint8_t byte = current();
        skip();
        if (byte == I_16) return static_cast<std::int16_t>(readLittleEndian<std::uint16_t>());
        if (byte == I_32) return static_cast<std::int32_t>(readLittleEndian<std::uint32_t>());
        if (byte <= REFERENCE_TAG || current() == END) return static_cast<std::int8_t>(byte);
    }
}

template <class Number, class Bits>
Number TypedStreamReader::readDecimal() {
    const std::uint8_t byte = current();
    if (byte == I_16 || byte == I_32) return static_cast<Number>(readSignedInt());
    skip();
    if (byte == DECIMAL) return std::bit_cast<Number>(readLittleEndian<Bits>());
    return static_cast<Number>(readSignedInt());
}

float TypedStreamReader::readFloat() {
    return readDecimal<float, std::uint32_t>();
}

double TypedStreamReader::readDouble() {
    return readDecimal<double, std::uint64_t>();
}

std::string TypedStreamReader::readString(std::uint64_t count) {
    const auto bytes = readBytes(count);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (!isValidUTF8(text)) {
        throw TypedStreamDecoderError(TypedStreamDecoderError::StringParseError{{"Invalid UTF-8", 0}});
    }
    return std::string(text);
}

std::size_t TypedStreamReader::readPointer() {
    const std::uint8_t byte = current();
    skip();
    if (byte >= 0x80 && byte < REFERENCE_TAG) {
        throw TypedStreamDecoderError(TypedStreamDecoderError::InvalidPointer{byte});
    }
    // Modulo 256: the bytes below 0x80 wrap round to the indices 110 to 237.
    return static_cast<std::uint8_t>(byte - REFERENCE_TAG);
}

} // namespace quillbook::typedstream
