#include "tools/sample/VCardWriter.h"

#include "core/records/Base64.h"
#include "platform/FileWriter.h"
#include "tools/sample/MediaPortraits.h"
#include "tools/sample/SamplePeople.h"

#include <algorithm>

namespace quillbook::sample {
namespace {

constexpr std::size_t longestLine = 75;

bool isContinuationByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// RFC 2426, section 4: commas, semicolons and backslashes of a value are escaped.
std::string escaped(std::string_view text) {
    std::string result;
    for (const char letter : text) {
        if (letter == ',' || letter == ';' || letter == '\\') result += '\\';
        result += letter;
    }
    return result;
}

/// In the order that the person's own language has.
std::string fullName(const SamplePerson& person) {
    if (person.familyName.empty()) return person.givenName;
    if (person.country == "cn" || person.country == "kr") return person.familyName + person.givenName;
    if (person.country == "jp") return person.familyName + " " + person.givenName;
    return person.givenName + " " + person.familyName;
}

std::string card(const SamplePerson& person) {
    std::string text = vCardLine("BEGIN:VCARD") + vCardLine("VERSION:3.0");
    text += vCardLine("N:" + escaped(person.familyName) + ";" + escaped(person.givenName) + ";;;");
    text += vCardLine("FN:" + escaped(fullName(person)));
    if (!person.organization.empty()) text += vCardLine("ORG:" + escaped(person.organization));
    const bool isEmail = person.addressInBook.find('@') != std::string::npos;
    text += vCardLine((isEmail ? "EMAIL;TYPE=INTERNET:" : "TEL;TYPE=CELL:") + person.addressInBook);
    if (person.hasPicture)
        text += vCardLine("PHOTO;ENCODING=b;TYPE=JPEG:" + base64(portraitJPEG(person.look)));
    return text + vCardLine("END:VCARD");
}

} // namespace

std::string vCardLine(std::string_view line) {
    std::string text;
    std::size_t room = longestLine;
    while (line.size() > room) {
        std::size_t end = room;
        while (end > 1 && isContinuationByte(line[end]))
            --end;
        text.append(line.substr(0, end)).append("\r\n ");
        line.remove_prefix(end);
        room = longestLine - 1;
    }
    return text.append(line).append("\r\n");
}

void writeAddressBook(const std::filesystem::path& file) {
    FileWriter writer(file);
    for (const SamplePerson& person : samplePeople()) {
        if (!person.addressInBook.empty()) writer.write(card(person));
    }
    writer.close();
}

} // namespace quillbook::sample
