#include "tools/sample/TypedStreamWriter.h"

#include <bit>

namespace quillbook::sample {
namespace {

constexpr std::uint8_t twoBytesTag = 0x81;
constexpr std::uint8_t fourBytesTag = 0x82;
constexpr std::uint8_t floatingTag = 0x83;
constexpr std::uint8_t newTag = 0x84;
constexpr std::uint8_t nothingTag = 0x85;
/// Bytes below this one, read as signed, are tags.
constexpr std::int64_t lowestPlainInteger = -110;

void appendLittleEndian(Data& bytes, std::uint64_t value, unsigned count) {
    for (unsigned index = 0; index < count; ++index) {
        bytes.push_back(static_cast<std::uint8_t>(value >> (8U * index)));
    }
}

} // namespace

TypedStreamWriter::TypedStreamWriter() {
    bytes_.reserve(512);
    writeInteger(4);
    writeBytes("streamtyped");
    writeInteger(1000);
}

void TypedStreamWriter::writeInteger(std::int64_t value) {
    const auto raw = static_cast<std::uint64_t>(value);
    if (value >= lowestPlainInteger && value <= 127) {
        appendLittleEndian(bytes_, raw, 1);
    } else if (value >= -32768 && value <= 32767) {
        bytes_.push_back(twoBytesTag);
        appendLittleEndian(bytes_, raw, 2);
    } else {
        bytes_.push_back(fourBytesTag);
        appendLittleEndian(bytes_, raw, 4);
    }
}

void TypedStreamWriter::writeDouble(double value) {
    bytes_.push_back(floatingTag);
    appendLittleEndian(bytes_, std::bit_cast<std::uint64_t>(value), 8);
}

void TypedStreamWriter::writeBytes(std::string_view bytes) {
    writeInteger(static_cast<std::int64_t>(bytes.size()));
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
}

void TypedStreamWriter::writeReference(std::size_t index) {
    writeInteger(lowestPlainInteger + static_cast<std::int64_t>(index));
}

void TypedStreamWriter::writeSharedString(std::string_view text) {
    const auto known = sharedStrings_.find(text);
    if (known != sharedStrings_.end()) {
        writeReference(known->second);
        return;
    }
    sharedStrings_.emplace(text, sharedStrings_.size());
    bytes_.push_back(newTag);
    writeBytes(text);
}

void TypedStreamWriter::writeCString(std::string_view text) {
    std::string key = "*";
    key += text;
    const auto known = sharedObjects_.find(key);
    if (known != sharedObjects_.end()) {
        writeReference(known->second);
        return;
    }
    sharedObjects_.emplace(key, objectCount_++);
    bytes_.push_back(newTag);
    writeSharedString(text);
}

void TypedStreamWriter::writeClass(std::span<const TypedStreamClass> chain) {
    if (chain.empty()) {
        bytes_.push_back(nothingTag);
        return;
    }
    const auto known = sharedObjects_.find(chain.front().name);
    if (known != sharedObjects_.end()) {
        writeReference(known->second);
        return;
    }
    sharedObjects_.emplace(chain.front().name, objectCount_++);
    bytes_.push_back(newTag);
    writeSharedString(chain.front().name);
    writeInteger(chain.front().version);
    writeClass(chain.subspan(1));
}

void TypedStreamWriter::beginObject(std::span<const TypedStreamClass> chain) {
    bytes_.push_back(newTag);
    ++objectCount_;
    writeClass(chain);
}

} // namespace quillbook::sample
