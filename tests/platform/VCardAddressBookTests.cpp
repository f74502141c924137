#include "platform/FileError.h"
#include "platform/linux/VCardAddressBook.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillbook {
namespace {

using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<AddressBookContact> contactsIn(const std::filesystem::path& file) {
    std::vector<AddressBookContact> contacts;
    VCardAddressBook(file).forEachContact(
        [&](const AddressBookContact& contact) { contacts.push_back(contact); });
    return contacts;
}

std::vector<AddressBookContact> contactsOf(std::string_view text) {
    const TemporaryFolder folder;
    return contactsIn(folder.write("contacts.vcf", text));
}

AddressBookContact contactOf(std::string_view properties) {
    const auto contacts =
        contactsOf("BEGIN:VCARD\r\nVERSION:3.0\r\n" + std::string(properties) + "\r\nEND:VCARD\r\n");
    return contacts.empty() ? AddressBookContact() : contacts.front();
}

const Data pngFront{0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
const Data jpegFront{0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10};

TEST(VCardAddressBook, needsNoAccess) {
    VCardAddressBook book("/nowhere/contacts.vcf");
    EXPECT_EQ(book.authorization(), AddressBook::Authorization::authorized);
    EXPECT_TRUE(book.requestAccess());
}

TEST(VCardAddressBook, readsAWholeContact) {
    const AddressBookContact contact = contactOf(
        "FN:Dr. Ada Quill\r\nN:Quill;Ada;;Dr.;\r\nORG:Rivertown Bank;Vault\r\n"
        "item1.EMAIL;type=INTERNET;type=pref:ada@rivertown.example\r\nEMAIL:quill@rivertown.example\r\n"
        "TEL;type=CELL;type=VOICE:+1 (415) 555-0123\r\nTEL:555 0199\r\n"
        "PHOTO;ENCODING=b;TYPE=PNG:iVBORw0KGgo=");
    const AddressBookContact expected{.fullName = "Dr. Ada Quill",
                                      .organization = "Rivertown Bank",
                                      .emails = {"ada@rivertown.example", "quill@rivertown.example"},
                                      .phones = {"+1 (415) 555-0123", "555 0199"},
                                      .thumbnail = pngFront};
    EXPECT_EQ(contact, expected);
}

struct NameCase {
    const char* name;
    std::string properties;
    const char* fullName;
};

class FullName : public testing::TestWithParam<NameCase> {};

TEST_P(FullName, isReadAsMeant) {
    EXPECT_EQ(contactOf(GetParam().properties).fullName, GetParam().fullName);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FullName,
    testing::Values(
        NameCase{"formattedName", "FN:Ada Quill", "Ada Quill"},
        NameCase{"formattedNameBeforeTheParts", "N:Quill;Ada;;;\r\nFN:Ada of Rivertown", "Ada of Rivertown"},
        NameCase{"firstOfSeveral", "FN:Ada Quill\r\nFN:Countess", "Ada Quill"},
        NameCase{"blankFormattedName", "FN: \r\nN:Quill;Ada;;;", "Ada Quill"},
        NameCase{"emptyFormattedName", "FN:\r\nN:Quill;Ada;;;", "Ada Quill"},
        NameCase{"allParts", "N:Quill;Ada;Maria;Dr.;Jr.", "Dr. Ada Maria Quill Jr."},
        NameCase{"familyNameAlone", "N:Quill", "Quill"}, //
        NameCase{"givenNameAlone", "N:;Ada;;;", "Ada"},
        NameCase{"morePartsThanThereAre", "N:Quill;Ada;;;;;x", "Ada Quill"},
        NameCase{"noParts", "N:;;;;", ""}, //
        NameCase{"noName", "TEL:1", ""},
        NameCase{"escapes", "FN:Quill\\, Ada\\; \\\\\\nRivertown", "Quill, Ada; \\\nRivertown"},
        NameCase{"commasAndSemicolonsWithoutEscape", "FN:Quill, Ada; Rivertown", "Quill, Ada; Rivertown"},
        NameCase{"beyondASCII", "FN:Jörg Ærø 山田", "Jörg Ærø 山田"},
        NameCase{"quotedPrintable", "FN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:J=C3=B6rg=20=\r\nQuill",
                 "Jörg Quill"},
        NameCase{"bareQuotedPrintable", "FN;QUOTED-PRINTABLE:J=C3=B6rg", "Jörg"},
        NameCase{"quotedPrintableOfLatin1", "FN;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:J=F6rg", "Jörg"},
        NameCase{"folded", "FN:Ada \r\n Qu\r\n ill", "Ada Quill"},
        NameCase{"invalidBytes", "FN:A\xFFq", "A\uFFFDq"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(VCardAddressBook, organizationIsItsFirstPart) {
    EXPECT_EQ(contactOf("ORG:Quill\\, Ink & Co.;Sales;North").organization, "Quill, Ink & Co.");
}

TEST(VCardAddressBook, takesAddressesOutOfTheirURIs) {
    EXPECT_THAT(contactOf("TEL;VALUE=uri;TYPE=cell:tel:+1-415-555-0123;ext=5").phones,
                ElementsAre("+1-415-555-0123"));
    EXPECT_THAT(contactOf("EMAIL:mailto:ada@rivertown.example").emails, ElementsAre("ada@rivertown.example"));
}

TEST(VCardAddressBook, leavesOutBlankAddresses) {
    const AddressBookContact contact = contactOf("TEL:\r\nTEL: \r\nEMAIL:\r\nEMAIL;TYPE=x: ");
    EXPECT_THAT(contact.phones, IsEmpty());
    EXPECT_THAT(contact.emails, IsEmpty());
}

struct PhotoCase {
    const char* name;
    std::string property;
    std::optional<Data> picture;
};

class Photo : public testing::TestWithParam<PhotoCase> {};

TEST_P(Photo, isReadAsMeant) {
    EXPECT_EQ(contactOf("FN:Ada\r\n" + GetParam().property).thumbnail, GetParam().picture);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Photo,
    testing::Values(
        PhotoCase{"version3", "PHOTO;ENCODING=b;TYPE=JPEG:/9j/4AAQ", jpegFront},
        PhotoCase{"version21", "PHOTO;ENCODING=BASE64;TYPE=JPEG:/9j/\r\n 4AAQ\r\n", jpegFront},
        PhotoCase{"version21Bare", "PHOTO;JPEG;BASE64:/9j/4AAQ", jpegFront},
        PhotoCase{"version21Unindented", "PHOTO;ENCODING=BASE64;JPEG:/9j/\r\n4AAQ\r\n\r\nTEL:1", jpegFront},
        PhotoCase{"version4", "PHOTO:data:image/png;base64,iVBORw0KGgo=", pngFront},
        PhotoCase{"version4Folded", "PHOTO:data:image/png;base64,iVBO\r\n Rw0KGgo=", pngFront},
        PhotoCase{"version4AsURI", "PHOTO;VALUE=uri:data:image/png;base64,iVBORw0KGgo=", pngFront},
        PhotoCase{"gif", "PHOTO;ENCODING=b;TYPE=GIF:R0lGODlh", Data{'G', 'I', 'F', '8', '9', 'a'}},
        PhotoCase{"networkAddress", "PHOTO;VALUE=uri:https://rivertown.example/ada.jpg", std::nullopt},
        PhotoCase{"fileAddress", "PHOTO;VALUE=uri:file:///etc/hostname", std::nullopt},
        PhotoCase{"noBase64", "PHOTO;ENCODING=b:***", std::nullopt},
        PhotoCase{"noPicture", "PHOTO;ENCODING=b:aGVsbG8gd29ybGQ=", std::nullopt},
        PhotoCase{"empty", "PHOTO;ENCODING=b:", std::nullopt},
        PhotoCase{"dataURIWithoutBase64", "PHOTO:data:image/png,abc", std::nullopt},
        PhotoCase{"dataURIOfBadBase64", "PHOTO:data:image/png;base64,iVBORw0KGgo", std::nullopt}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(VCardAddressBook, readsCardsOfAllVersionsInOrder) {
    const auto contacts = contactsOf("BEGIN:VCARD\r\nVERSION:2.1\r\nN:Quill;Ada\r\nEND:VCARD\r\n"
                                     "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Ben Quill\r\nEND:VCARD\r\n"
                                     "BEGIN:VCARD\r\nVERSION:4.0\r\nFN:Cleo Quill\r\nEND:VCARD\r\n");
    std::vector<std::string> names;
    for (const AddressBookContact& contact : contacts)
        names.push_back(contact.fullName);
    EXPECT_THAT(names, ElementsAre("Ada Quill", "Ben Quill", "Cleo Quill"));
}

TEST(VCardAddressBook, emptyFileHasNobody) {
    EXPECT_THAT(contactsOf(""), IsEmpty());
}

TEST(VCardAddressBook, readsTheFileAnewEachTime) {
    const TemporaryFolder folder;
    VCardAddressBook book(folder.write("contacts.vcf", ""));
    folder.write("contacts.vcf", "BEGIN:VCARD\r\nFN:Ada\r\nEND:VCARD\r\n");
    int count = 0;
    book.forEachContact([&](const AddressBookContact&) { ++count; });
    EXPECT_EQ(count, 1);
}

TEST(VCardAddressBook, missingFileThrows) {
    const TemporaryFolder folder;
    EXPECT_THROW(contactsIn(folder / "missing.vcf"), DescribedError);
}

TEST(VCardAddressBook, folderThrows) {
    const TemporaryFolder folder;
    EXPECT_THROW(contactsIn(folder.path()), DescribedError);
}

TEST(VCardAddressBook, endlessFileThrowsBehindWhatItGave) {
    const TemporaryFolder folder;
    const auto file = folder.write("contacts.vcf", "BEGIN:VCARD\r\nFN:Ada\r\nEND:VCARD\r\n");
    std::filesystem::resize_file(file, std::uintmax_t{300} << 20U);
    int count = 0;
    EXPECT_THROW(VCardAddressBook(file).forEachContact([&](const AddressBookContact&) { ++count; }),
                 FileError);
    EXPECT_EQ(count, 1);
}

TEST(VCardAddressBook, hostilePropertiesTakeNoMoreThanSeconds) {
    std::string properties;
    for (int line = 0; line < 50'000; ++line) {
        properties += "TEL" + std::string(30, ';') + ":" + std::string(30, ';') + "\r\n";
    }
    properties +=
        "TEL:" + std::string(5'000'000, ';') + "\r\nTEL;A=b" + std::string(5'000'000, ',') + ":1\r\n";
    properties += "EMAIL:" + std::string(5'000'000, '\\') + "\r\nFN:Ada";
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(contactsOf("BEGIN:VCARD\r\n" + properties + "\r\nEND:VCARD\r\n").size(), 1U);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

} // namespace
} // namespace quillbook
