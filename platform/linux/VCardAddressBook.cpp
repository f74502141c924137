#include "platform/linux/VCardAddressBook.h"

#include "core/records/Base64.h"
#include "core/text/UTF8.h"
#include "core/text/UnicodeCategories.h"
#include "platform/FileError.h"
#include "platform/FileReader.h"
#include "platform/linux/VCardSplitter.h"

#include <array>
#include <memory>
#include <utility>

#include <libebook-contacts/libebook-contacts.h>

namespace quillbook {
namespace {

constexpr std::size_t greatestFile = 256 * fileBlockSize;

struct ObjectReleaser {
    void operator()(EVCard* card) const { g_object_unref(card); }
};

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

std::optional<Data> pictureOf(EVCardAttribute* attribute) {
    std::string bytes = joined(valuesOf(attribute), ";");
    if (!isPicture(bytes)) bytes = inlinedBytes(bytes);
    if (!isPicture(bytes)) return std::nullopt;
    return Data(bytes.begin(), bytes.end());
}

bool isNamed(EVCardAttribute* attribute, const char* name) {
    return g_ascii_strcasecmp(e_vcard_attribute_get_name(attribute), name) == 0;
}

AddressBookContact contactOf(const std::string& text) {
    const std::unique_ptr<EVCard, ObjectReleaser> card(e_vcard_new_from_string(text.c_str()));
    AddressBookContact contact;
    std::string nameOfParts;
    for (const GList* node = e_vcard_get_attributes(card.get()); node != nullptr; node = node->next) {
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
            contact.thumbnail = pictureOf(attribute);
        }
    }
    if (contact.fullName.empty()) contact.fullName = std::move(nameOfParts);
    return contact;
}

} // namespace

VCardAddressBook::VCardAddressBook(std::filesystem::path file) : file_(std::move(file)) {}

void VCardAddressBook::forEachContact(const std::function<void(const AddressBookContact&)>& visit) {
    FileReader reader(file_);
    VCardSplitter splitter([&](const std::string& card) { visit(contactOf(card)); });
    std::size_t read = 0;
    for (auto block = reader.next(); !block.empty(); block = reader.next()) {
        if (block.size() > greatestFile - read) {
            throw FileError(FileError::Action::read, file_, std::make_error_code(std::errc::file_too_large));
        }
        read += block.size();
        splitter.add({reinterpret_cast<const char*>(block.data()), block.size()});
    }
    splitter.finish();
}

} // namespace quillbook
