#include "platform/linux/ContactCard.h"

#include "core/records/Base64.h"
#include "core/text/UTF8.h"
#include "core/text/UnicodeCategories.h"
#include "platform/linux/GLibPointers.h"

#include <array>
#include <string_view>
#include <utility>
#include <vector>

#include <libebook-contacts/libebook-contacts.h>

namespace quillbook {
namespace {

using Values = std::vector<std::string>;

/// The values of a property without their transfer encoding.
Values valuesOf(EVCardAttribute* attribute) {
    Values values;
    for (const GList* node = e_vcard_attribute_get_values_decoded(attribute); node != nullptr;
         node = node->next) {
        const auto* value = static_cast<const GString*>(node->data);
        values.emplace_back(value->str, value->len);
    }
    return values;
}

std::string cleaned(std::string_view value) {
    return repairedUTF8(trimmedWhitespace(value));
}

std::string joined(const Values& values, std::string_view separator) {
    std::string text;
    for (const std::string& value : values) {
        if (!text.empty()) text += separator;
        text += value;
    }
    return text;
}

/// Family, given and additional names, prefixes and suffixes (RFC 6350, section 6.2.2) as they are spoken.
std::string spokenName(const Values& parts) {
    Values spoken;
    for (const std::size_t part : {3U, 1U, 2U, 0U, 4U}) {
        if (part >= parts.size()) continue;
        if (std::string name = cleaned(parts[part]); !name.empty()) spoken.push_back(std::move(name));
    }
    return joined(spoken, " ");
}

/// An address without the scheme of its URI, such as "tel:".
std::string withoutScheme(const std::string& address, std::string_view scheme) {
    if (g_ascii_strncasecmp(address.c_str(), scheme.data(), scheme.size()) != 0) return address;
    return address.substr(scheme.size());
}

void addAddress(Values& addresses, const Values& values, std::string_view scheme) {
    if (values.empty()) return;
    if (std::string address = cleaned(withoutScheme(values.front(), scheme)); !address.empty()) {
        addresses.push_back(std::move(address));
    }
}

/// The bytes of a "data:" URI in Base64 (RFC 2397); empty for any other.
std::string inlinedBytes(std::string_view uri) {
    constexpr std::string_view marker = ";base64,";
    const auto start = uri.find(marker);
    if (uri.substr(0, 5) != "data:" || start == std::string_view::npos) return {};
    const auto bytes = decodeBase64(uri.substr(start + marker.size()));
    return bytes ? std::string(bytes->begin(), bytes->end()) : std::string();
}

bool isPicture(std::string_view bytes) {
    constexpr std::array<std::string_view, 4> fronts = {"\xFF\xD8\xFF", "\x89PNG", "GIF8", "RIFF"};
    for (const std::string_view front : fronts) {
        if (bytes.substr(0, front.size()) == front) return true;
    }
    return false;
}

bool isPicture(const Data& bytes) {
    return isPicture({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

std::optional<Data> pictureOf(EVCardAttribute* attribute, const PictureOfURI& pictureOfURI) {
    const std::string value = joined(valuesOf(attribute), ";");
    if (isPicture(value)) return Data(value.begin(), value.end());
    const std::string inlined = inlinedBytes(value);
    if (isPicture(inlined)) return Data(inlined.begin(), inlined.end());
    auto picture = pictureOfURI ? pictureOfURI(value) : std::nullopt;
    return picture && isPicture(*picture) ? picture : std::nullopt;
}

bool isNamed(EVCardAttribute* attribute, const char* name) {
    return g_ascii_strcasecmp(e_vcard_attribute_get_name(attribute), name) == 0;
}

} // namespace

AddressBookContact contactOfCard(const std::string& card, const PictureOfURI& pictureOfURI) {
    const GObjectPointer<EVCard> parsed(e_vcard_new_from_string(card.c_str()));
    AddressBookContact contact;
    std::string nameOfParts;
    for (const GList* node = e_vcard_get_attributes(parsed.get()); node != nullptr; node = node->next) {
        auto* attribute = static_cast<EVCardAttribute*>(node->data);
        if (isNamed(attribute, "FN") && contact.fullName.empty()) {
            contact.fullName = cleaned(joined(valuesOf(attribute), ";"));
        } else if (isNamed(attribute, "N") && nameOfParts.empty()) {
            nameOfParts = spokenName(valuesOf(attribute));
        } else if (isNamed(attribute, "ORG") && contact.organization.empty()) {
            const Values units = valuesOf(attribute);
            if (!units.empty()) contact.organization = cleaned(units.front());
        } else if (isNamed(attribute, "EMAIL")) {
            addAddress(contact.emails, valuesOf(attribute), "mailto:");
        } else if (isNamed(attribute, "TEL")) {
            addAddress(contact.phones, valuesOf(attribute), "tel:");
        } else if (isNamed(attribute, "PHOTO") && !contact.thumbnail) {
            contact.thumbnail = pictureOf(attribute, pictureOfURI);
        }
    }
    if (contact.fullName.empty()) contact.fullName = std::move(nameOfParts);
    return contact;
}

} // namespace quillbook
