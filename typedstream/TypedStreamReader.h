#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace quillbook::typedstream {

// NOLINTBEGIN(readability-identifier-naming): the tags keep the names that the format page gives them.
/// The bytes that steer a typed archive (docs/formats/typed-archive.md, "Tags").
inline constexpr std::uint8_t I_16 = 0x81;
inline constexpr std::uint8_t I_32 = 0x82;
inline constexpr std::uint8_t DECIMAL = 0x83;
inline constexpr std::uint8_t START = 0x84;
inline constexpr std::uint8_t EMPTY = 0x85;
inline constexpr std::uint8_t END = 0x86;
inline constexpr std::uint64_t REFERENCE_TAG = 0x92;
// NOLINTEND(readability-identifier-naming)

/// Reads the elements of a typed archive from front to back. Every function throws TypedStreamDecoderError,
/// outOfBounds above all, and none reads past the end. The bytes must outlive the reader.
class TypedStreamReader {
public:
    explicit TypedStreamReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    std::uint64_t index() const { return index_; }
    std::uint64_t length() const { return bytes_.size(); }
    bool isAtEnd() const { return index_ >= bytes_.size(); }
    /// The byte at `index`.
    std::uint8_t current() const;
    /// The byte after it.
    std::uint8_t following() const;
    /// Moves past one byte, be it there or not.
    void skip() { ++index_; }
    /// Moves past all bytes that equal `byte`.
    void skipAll(std::uint8_t byte);

    std::uint64_t readUnsignedInt();
    std::int64_t readSignedInt();
    float readFloat();
    double readDouble();
    /// A part of the bytes themselves.
    std::span<const std::uint8_t> readBytes(std::uint64_t count);
    /// stringParseError unless the bytes are UTF-8.
    std::string readString(std::uint64_t count);
    /// The index that a reference byte stands for.
    std::size_t readPointer();

    [[noreturn]] void failOutOfBounds(std::uint64_t index) const;

private:
    template <class Number>
    Number readLittleEndian();
    template <class Number, class Bits>
    Number readDecimal();

    std::span<const std::uint8_t> bytes_;
    std::uint64_t index_ = 0;
};

} // namespace quillbook::typedstream
