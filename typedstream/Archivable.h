#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/// What a typed archive holds, as values that compare and hash by value (docs/formats/typed-archive.md).
namespace quillbook::typedstream {

/// A class name that stands in the table of type lists. No signature writes it.
struct StringType {
    std::string text;

    bool operator==(const StringType&) const = default;
};

/// "[" and a count of one or more.
struct ArrayType {
    std::int64_t count = 1;

    bool operator==(const ArrayType&) const = default;
};

/// A signature byte without a meaning here; its value takes no bytes of the archive.
struct UnknownType {
    std::uint8_t byte = 0;

    bool operator==(const UnknownType&) const = default;
};

/// The types without a payload: "+", "*", "@", "cilqs", "CILQS", "f" and "d".
enum class PlainType { utf8String, embeddedData, object, signedInt, unsignedInt, floatNumber, doubleNumber };

/// One entry of a type signature.
using Type = std::variant<StringType, ArrayType, UnknownType, PlainType>;
using TypeList = std::vector<Type>;

struct Class {
    std::string name;
    std::uint64_t version = 0;

    bool operator==(const Class&) const = default;
};

struct ByteArray {
    std::vector<std::uint8_t> bytes;

    bool operator==(const ByteArray&) const = default;
};

/// One value read from an archive. The single byte stands for a value of unknown type and repeats the
/// signature's byte.
using Object =
    std::variant<std::string, std::int64_t, std::uint64_t, float, double, std::uint8_t, ByteArray, Class>;

/// A slot reserved for an object still being read.
struct Placeholder {
    bool operator==(const Placeholder&) const = default;
};

/// An instance with its values.
struct ObjectItem {
    Class type;
    std::vector<Object> values;

    bool operator==(const ObjectItem&) const = default;
};

/// Values that belong to no class.
struct DataItem {
    std::vector<Object> values;

    bool operator==(const DataItem&) const = default;
};

struct TypeItem {
    TypeList types;

    bool operator==(const TypeItem&) const = default;
};

/// One item of an archive.
using Archivable = std::variant<Placeholder, ObjectItem, DataItem, Class, TypeItem>;

/// The text of an NSString or NSMutableString that a person could have written: with a letter or number,
/// without the marks of attribute names.
std::optional<std::string> stringValue(const Archivable& item);
/// The number of an NSNumber whose first value is signed.
std::optional<std::int64_t> signedIntegerValue(const Archivable& item);
/// The number of an NSNumber whose first value is unsigned.
std::optional<std::uint64_t> unsignedIntegerValue(const Archivable& item);

/// One for all records: equal records have equal hashes.
struct RecordHash {
    std::size_t operator()(const StringType& type) const noexcept;
    std::size_t operator()(const ArrayType& type) const noexcept;
    std::size_t operator()(const UnknownType& type) const noexcept;
    std::size_t operator()(const Class& type) const noexcept;
    std::size_t operator()(const ByteArray& array) const noexcept;
    std::size_t operator()(const Placeholder& slot) const noexcept;
    std::size_t operator()(const ObjectItem& item) const noexcept;
    std::size_t operator()(const DataItem& item) const noexcept;
    std::size_t operator()(const TypeItem& item) const noexcept;
};

} // namespace quillbook::typedstream

// The variants hash through their alternatives.
template <>
struct std::hash<quillbook::typedstream::StringType> : quillbook::typedstream::RecordHash {};
template <>
struct std::hash<quillbook::typedstream::ArrayType> : quillbook::typedstream::RecordHash {};
template <>
struct std::hash<quillbook::typedstream::UnknownType> : quillbook::typedstream::RecordHash {};
template <>
struct std::hash<quillbook::typedstream::Class> : quillbook::typedstream::RecordHash {};
template <>
struct std::hash<quillbook::typedstream::ByteArray> : quillbook::typedstream::RecordHash {};
template <>
struct std::hash<quillbook::typedstream::Placeholder> : quillbook::typedstream::RecordHash {};
template <>
struct std::hash<quillbook::typedstream::ObjectItem> : quillbook::typedstream::RecordHash {};
template <>
struct std::hash<quillbook::typedstream::DataItem> : quillbook::typedstream::RecordHash {};
template <>
struct std::hash<quillbook::typedstream::TypeItem> : quillbook::typedstream::RecordHash {};
