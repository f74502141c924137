#include "typedstream/Archivable.h"

#include "core/text/UTF8.h"
#include "core/text/UnicodeCategories.h"

#include <string_view>

namespace quillbook::typedstream {
namespace {

/// The first value, as a T, of an instance of a class that one of `classNames` names.
template <class T>
const T* firstValue(const Archivable& item, std::initializer_list<std::string_view> classNames) {
    const auto* object = std::get_if<ObjectItem>(&item);
    if (object == nullptr || object->values.empty()) return nullptr;
    for (const std::string_view name : classNames) {
        if (object->type.name == name) return std::get_if<T>(&object->values.front());
    }
    return nullptr;
}

bool hasLetterOrNumber(std::string_view text) {
    while (!text.empty()) {
        const char32_t scalar = takeScalar(text);
        if (isLetter(scalar) || isNumber(scalar)) return true;
    }
    return false;
}

bool isAttributeName(std::string_view text) {
    return text.starts_with("__k") || text.find("Attribute") != std::string_view::npos ||
           text.find("NS") != std::string_view::npos;
}

template <class T>
std::optional<T> copied(const T* value) {
    return value == nullptr ? std::nullopt : std::optional<T>(*value);
}

std::size_t combined(std::size_t seed, std::size_t value) {
    return seed ^ (value + 0x9E3779B97F4A7C15ULL + (seed << 6U) + (seed >> 2U));
}

template <class Element>
std::size_t listHash(const std::vector<Element>& list) {
    std::size_t seed = list.size();
    for (const Element& element : list)
        seed = combined(seed, std::hash<Element>()(element));
    return seed;
}

} // namespace

std::optional<std::string> stringValue(const Archivable& item) {
    const auto* text = firstValue<std::string>(item, {"NSString", "NSMutableString"});
    if (text == nullptr || isAttributeName(*text) || !hasLetterOrNumber(*text)) return std::nullopt;
    return *text;
}

std::optional<std::int64_t> signedIntegerValue(const Archivable& item) {
    return copied(firstValue<std::int64_t>(item, {"NSNumber"}));
}

std::optional<std::uint64_t> unsignedIntegerValue(const Archivable& item) {
    return copied(firstValue<std::uint64_t>(item, {"NSNumber"}));
}

std::size_t RecordHash::operator()(const StringType& type) const noexcept {
    return std::hash<std::string>()(type.text);
}

std::size_t RecordHash::operator()(const ArrayType& type) const noexcept {
    return std::hash<std::int64_t>()(type.count);
}

std::size_t RecordHash::operator()(const UnknownType& type) const noexcept {
    return std::hash<std::uint8_t>()(type.byte);
}

std::size_t RecordHash::operator()(const Class& type) const noexcept {
    return combined(std::hash<std::string>()(type.name), std::hash<std::uint64_t>()(type.version));
}

std::size_t RecordHash::operator()(const ByteArray& array) const noexcept {
    return listHash(array.bytes);
}

std::size_t RecordHash::operator()(const Placeholder&) const noexcept {
    return 0;
}

std::size_t RecordHash::operator()(const ObjectItem& item) const noexcept {
    return combined((*this)(item.type), listHash(item.values));
}

std::size_t RecordHash::operator()(const DataItem& item) const noexcept {
    return listHash(item.values);
}

std::size_t RecordHash::operator()(const TypeItem& item) const noexcept {
    return listHash(item.types);
}

} // namespace quillbook::typedstream
