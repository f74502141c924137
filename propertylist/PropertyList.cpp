#include "propertylist/PropertyList.h"

#include "core/text/UTF8.h"
#include "propertylist/PropertyListError.h"

#include <bit>
#include <cmath>

#include <plist/plist.h>

namespace quillbook {
namespace {

struct FreePropertyList {
    void operator()(void* list) const { plist_free(list); }
};
using OwnedList = std::unique_ptr<void, FreePropertyList>;

OwnedList parsed(std::string_view bytes, std::size_t maximumBytes) {
    plist_t list = nullptr;
    if (isSafeBinaryPropertyList(bytes, maximumBytes)) {
        plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &list);
    } else if (isSafeXMLPropertyList(bytes, maximumBytes)) {
        plist_from_xml(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &list);
    }
    return OwnedList(list);
}

plist_t item(plist_t top, const char* key) {
    return plist_get_node_type(top) == PLIST_DICT ? plist_dict_get_item(top, key) : nullptr;
}

/// The value of a key, or null where that is of another kind.
plist_t item(plist_t top, const char* key, plist_type kind) {
    const plist_t found = item(top, key);
    return found != nullptr && plist_get_node_type(found) == kind ? found : nullptr;
}

struct FreeBinary {
    void operator()(char* bytes) const { plist_to_bin_free(bytes); }
};

/// plist_get_date_val cuts the seconds to 32 bits and loses the sign of the fraction. Written out as the
/// array [date], the whole number stands behind "bplist00", the array with its one reference, and the marker.
std::optional<double> exactSeconds(plist_t date) {
    constexpr std::size_t start = 11;
    const OwnedList array(plist_new_array());
    plist_array_append_item(array.get(), plist_copy(date));
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(array.get(), &bytes, &length);
    const std::unique_ptr<char, FreeBinary> owner(bytes);
    const std::string_view list(bytes, bytes == nullptr ? 0 : length);
    if (list.size() < start + sizeof(double) || list[start - 1] != '\x33') return std::nullopt;
    std::uint64_t bits = 0;
    for (const char byte : list.substr(start, sizeof(double)))
        bits = (bits << 8U) | static_cast<unsigned char>(byte);
    return std::bit_cast<double>(bits);
}

} // namespace

PropertyList::PropertyList(std::string_view bytes, const std::string& name, std::size_t maximumBytes)
    : top_(parsed(withoutByteOrderMark(bytes), maximumBytes)) {
    if (!top_) throw PropertyListError(name);
}

bool PropertyList::isDictionary() const {
    return plist_get_node_type(top_.get()) == PLIST_DICT;
}

bool PropertyList::hasKey(const char* key) const {
    return item(top_.get(), key) != nullptr;
}

std::optional<std::string> PropertyList::string(const char* key) const {
    const plist_t found = item(top_.get(), key, PLIST_STRING);
    if (found == nullptr) return std::nullopt;
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(found, &length);
    return repairedUTF8(text == nullptr ? std::string_view() : std::string_view(text, length));
}

std::optional<bool> PropertyList::boolean(const char* key) const {
    const plist_t found = item(top_.get(), key, PLIST_BOOLEAN);
    if (found == nullptr) return std::nullopt;
    std::uint8_t value = 0;
    plist_get_bool_val(found, &value);
    return value != 0;
}

std::optional<std::int64_t> PropertyList::integer(const char* key) const {
    const plist_t found = item(top_.get(), key, PLIST_UINT);
    if (found == nullptr) return std::nullopt;
    std::uint64_t value = 0;
    plist_get_uint_val(found, &value);
    return static_cast<std::int64_t>(value);
}

std::optional<Data> PropertyList::data(const char* key) const {
    const plist_t found = item(top_.get(), key, PLIST_DATA);
    if (found == nullptr) return std::nullopt;
    std::uint64_t length = 0;
    const char* bytes = plist_get_data_ptr(found, &length);
    return bytes == nullptr ? Data() : Data(bytes, bytes + length);
}

std::optional<Date> PropertyList::date(const char* key) const {
    const plist_t found = item(top_.get(), key, PLIST_DATE);
    const auto seconds = found == nullptr ? std::nullopt : exactSeconds(found);
    if (!seconds || !std::isfinite(*seconds)) return std::nullopt;
    return Date{*seconds};
}

} // namespace quillbook
