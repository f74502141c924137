#include "contacts/ContactResolver.h"
#include "core/text/UTF8.h"
#include "platform/linux/VCardAddressBook.h"
#include "tests/sample/LibraryUnderTest.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/sample/SamplePeople.h"
#include "tools/sample/VCardWriter.h"

#include <gmock/gmock.h>

namespace quillbook::sample {
namespace {

std::vector<std::string> physicalLines(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find("\r\n");
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end + 2);
    }
    return lines;
}

TEST(VCardLine, leavesShortLinesWhole) {
    EXPECT_EQ(vCardLine("FN:Mum"), "FN:Mum\r\n");
}

TEST(VCardLine, foldsAfter75BytesWithABlank) {
    const auto lines = physicalLines(vCardLine(std::string(160, 'x')));
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].size(), 75U);
    EXPECT_EQ(lines[1], std::string(75, 'x').replace(0, 1, " "));
    EXPECT_EQ(lines[2], std::string(12, 'x').replace(0, 1, " "));
}

TEST(VCardLine, cutsNoCharacter) {
    std::string text = "N:";
    for (int letter = 0; letter < 60; ++letter)
        text += "語";
    for (const std::string& line : physicalLines(vCardLine(text))) {
        EXPECT_TRUE(isValidUTF8(line));
        EXPECT_LE(line.size(), 75U);
    }
}

TEST(SampleAddressBook, hasCardsThatAnIndependentReaderTakes) {
    VCardAddressBook book(test::defaultLibrary().contacts);
    std::size_t people = 0;
    std::size_t pictures = 0;
    book.forEachContact([&](const AddressBookContact& contact) {
        ++people;
        pictures += contact.thumbnail ? 1 : 0;
        EXPECT_FALSE(contact.fullName.empty());
        EXPECT_EQ(contact.emails.size() + contact.phones.size(), 1U);
    });
    EXPECT_EQ(people, 24U);
    EXPECT_EQ(pictures, 21U);
}

TEST(SampleAddressBook, namesEveryoneWhoseAddressStandsInIt) {
    ContactResolver resolver(std::make_shared<VCardAddressBook>(test::defaultLibrary().contacts));
    for (const SamplePerson& person : samplePeople()) {
        const ContactIdentities found = resolver.resolve({person.address});
        EXPECT_EQ(found.contains(person.address), !person.addressInBook.empty()) << person.key;
        if (!person.hasPicture) continue;
        EXPECT_EQ(found.at(person.address).avatarMimeType, "image/jpeg") << person.key;
    }
}

} // namespace
} // namespace quillbook::sample
