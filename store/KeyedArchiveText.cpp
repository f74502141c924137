#include "store/KeyedArchiveText.h"

#include "core/text/UTF8.h"
#include "propertylist/PropertyListGuard.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

#include <plist/plist.h>

namespace quillbook {
namespace {

struct FreePropertyList {
    void operator()(void* list) const { plist_free(list); }
};
using PropertyList = std::unique_ptr<void, FreePropertyList>;

constexpr std::array<std::string_view, 2> stringClasses = {"NSString", "NSMutableString"};
constexpr std::array<std::string_view, 2> attributedStringClasses = {"NSAttributedString",
                                                                     "NSMutableAttributedString"};

PropertyList parsedPropertyList(std::string_view bytes) {
    plist_t list = nullptr;
    const auto length = static_cast<std::uint32_t>(bytes.size());
    if (isSafeBinaryPropertyList(bytes)) {
        plist_from_bin(bytes.data(), length, &list);
    } else if (isSafeXMLPropertyList(bytes)) {
        plist_from_xml(bytes.data(), length, &list);
    }
    return PropertyList(list);
}

bool isKind(plist_t node, plist_type kind) {
    return node != nullptr && plist_get_node_type(node) == kind;
}

plist_t entry(plist_t node, const char* key) {
    return isKind(node, PLIST_DICT) ? plist_dict_get_item(node, key) : nullptr;
}

plist_t element(plist_t node, std::uint64_t index) {
    if (!isKind(node, PLIST_ARRAY) || index >= plist_array_get_size(node)) return nullptr;
    return plist_array_get_item(node, static_cast<std::uint32_t>(index));
}

std::string_view viewOfString(plist_t node) {
    if (!isKind(node, PLIST_STRING)) return {};
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(node, &length);
    return text == nullptr ? std::string_view() : std::string_view(text, length);
}

std::optional<std::uint64_t> unsignedNumber(plist_t node) {
    if (!isKind(node, PLIST_UINT)) return std::nullopt;
    std::uint64_t number = 0;
    plist_get_uint_val(node, &number);
    return number;
}

/// A property list in XML has no type for references and writes them as a dictionary of one entry.
std::optional<std::uint64_t> referenceOf(plist_t node) {
    if (isKind(node, PLIST_DICT)) return unsignedNumber(entry(node, "CF$UID"));
    if (!isKind(node, PLIST_UID)) return std::nullopt;
    std::uint64_t number = 0;
    plist_get_uid_val(node, &number);
    return number;
}

/// The flat list of objects of an archive, and how they refer to each other.
class KeyedArchive {
public:
    explicit KeyedArchive(plist_t list) : list_(list), objects_(entry(list, "$objects")) {}

    std::optional<std::string> text() const {
        if (viewOfString(entry(list_, "$archiver")) != "NSKeyedArchiver") return std::nullopt;
        if (unsignedNumber(entry(list_, "$version")) != 100000) return std::nullopt;
        const plist_t root = resolved(entry(entry(list_, "$top"), "root"));
        if (isOfClass(root, attributedStringClasses)) return stringText(resolved(entry(root, "NSString")));
        return stringText(root);
    }

private:
    /// What a value refers to, else the value itself. Object 0 is "$null" and stands for nothing.
    plist_t resolved(plist_t value) const {
        const auto index = referenceOf(value);
        if (!index) return value;
        return *index == 0 ? nullptr : element(objects_, *index);
    }

    /// True for a subclass too: "$classes" runs from the object's class to the root.
    template <std::size_t count>
    bool isOfClass(plist_t object, const std::array<std::string_view, count>& names) const {
        const plist_t description = resolved(entry(object, "$class"));
        const plist_t classes = entry(description, "$classes");
        const auto isNamed = [&names](plist_t name) {
            return std::find(names.begin(), names.end(), viewOfString(name)) != names.end();
        };
        if (isNamed(entry(description, "$classname"))) return true;
        constexpr std::uint64_t longestChain = 16;
        for (std::uint64_t index = 0; index < longestChain; ++index) {
            const plist_t name = element(classes, index);
            if (name == nullptr) return false;
            if (isNamed(name)) return true;
        }
        return false;
    }

    /// A string is an object by itself, or an instance that holds its characters or its UTF-8 bytes.
    std::optional<std::string> stringText(plist_t object) const {
        if (isKind(object, PLIST_STRING)) return repairedUTF8(viewOfString(object));
        if (!isOfClass(object, stringClasses)) return std::nullopt;
        const plist_t characters = resolved(entry(object, "NS.string"));
        if (isKind(characters, PLIST_STRING)) return repairedUTF8(viewOfString(characters));
        const plist_t bytes = resolved(entry(object, "NS.bytes"));
        if (!isKind(bytes, PLIST_DATA)) return std::nullopt;
        std::uint64_t length = 0;
        const char* data = plist_get_data_ptr(bytes, &length);
        const std::string_view text(data, data == nullptr ? 0 : length);
        return isValidUTF8(text) ? std::optional<std::string>(text) : std::nullopt;
    }

    plist_t list_;
    plist_t objects_;
};

} // namespace

std::optional<std::string> keyedArchiveText(std::span<const std::uint8_t> archive) {
    const std::string_view bytes(reinterpret_cast<const char*>(archive.data()), archive.size());
    const PropertyList list = parsedPropertyList(withoutByteOrderMark(bytes));
    return KeyedArchive(list.get()).text();
}

} // namespace quillbook
