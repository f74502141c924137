#pragma once

#include "core/records/ConversationSummary.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillbook::sample {

/// A class as a typed archive names it: its chain from the class itself to the root.
struct TypedStreamClass {
    std::string name;
    std::int64_t version = 0;
};

/// Writes the typed archive format ("streamtyped", version 4, little-endian): tagged integers, type
/// signatures and class chains, each written once and from then on named by its number.
class TypedStreamWriter {
public:
    TypedStreamWriter();

    /// Writes a type signature; the values that it announces follow.
    void beginValues(std::string_view signature) { writeSharedString(signature); }
    /// Begins an object of the class; its values follow, then `endObject`.
    void beginObject(std::span<const TypedStreamClass> chain);
    void endObject() { bytes_.push_back(0x86); }

    void writeInteger(std::int64_t value);
    void writeDouble(double value);
    /// A length and the bytes, as the signature "+" asks for.
    void writeBytes(std::string_view bytes);
    /// A C string, as the signature "*" asks for.
    void writeCString(std::string_view text);

    Data finish() { return std::move(bytes_); }

private:
    void writeSharedString(std::string_view text);
    void writeReference(std::size_t index);
    void writeClass(std::span<const TypedStreamClass> chain);

    Data bytes_;
    std::map<std::string, std::size_t, std::less<>> sharedStrings_;
    /// Classes and C strings by name; they share their numbering with the objects.
    std::map<std::string, std::size_t, std::less<>> sharedObjects_;
    std::size_t objectCount_ = 0;
};

} // namespace quillbook::sample
