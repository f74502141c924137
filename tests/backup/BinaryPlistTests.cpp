#include "tests/backup/PlistFixture.h"
#include "tests/backup/RawPlist.h"

#include <map>
#include <memory>

#include <gmock/gmock.h>
#include <plist/plist.h>

namespace quillbook {
namespace {

using namespace std::string_literals;
using namespace test;
using Reason = BinaryPlistError::Reason;

TEST(BinaryPlistError, HasTheWordsOfAnUnexpectedError) {
    for (const Reason reason : {Reason::unsupportedObject, Reason::notBinaryPlist, Reason::truncated})
        EXPECT_EQ(BinaryPlistError(reason).description(), "An unexpected error occurred.");
}

struct FileCase {
    const char* name;
    std::string bytes;
    std::optional<Reason> reason;
};

RawPlist oneTrue() {
    return {.objects = {"\x09"}};
}

RawPlist with(void (*change)(RawPlist&)) {
    RawPlist list = oneTrue();
    change(list);
    return list;
}

class BinaryPlistFile : public testing::TestWithParam<FileCase> {};

TEST_P(BinaryPlistFile, IsReadOrRefused) {
    EXPECT_EQ(reasonOf(GetParam().bytes), GetParam().reason);
}

INSTANTIATE_TEST_SUITE_P(
    Table, BinaryPlistFile,
    testing::Values(
        FileCase{"aListOfOneObject", oneTrue().bytes(), std::nullopt},
        FileCase{"nothing", "", Reason::notBinaryPlist},
        FileCase{"thirtyNineBytes", "bplist00" + std::string(31, '\0'), Reason::notBinaryPlist},
        FileCase{"fortyBytesWithABadTrailer", "bplist00" + std::string(32, '\0'), Reason::truncated},
        FileCase{"anotherVersion", with([](RawPlist& list) { list.header = "bplist01"; }).bytes(),
                 Reason::notBinaryPlist},
        FileCase{"aVersionOfLetters", with([](RawPlist& list) { list.header = "bplistxx"; }).bytes(),
                 Reason::notBinaryPlist},
        FileCase{"aListInXML", "<?xml version=\"1.0\"?><plist><dict><key>Size</key></dict></plist>",
                 Reason::notBinaryPlist},
        FileCase{"noObjects", with([](RawPlist& list) { list.count = 0; }).bytes(), Reason::truncated},
        FileCase{"topObjectEqualToTheCount", with([](RawPlist& list) { list.top = 1; }).bytes(),
                 Reason::truncated},
        FileCase{"countWithItsTopBit", with([](RawPlist& list) { list.count = 0x8000000000000001; }).bytes(),
                 Reason::truncated},
        FileCase{"topObjectWithItsTopBit",
                 with([](RawPlist& list) { list.top = 0x8000000000000000; }).bytes(), Reason::truncated},
        FileCase{"tableWithItsTopBit", with([](RawPlist& list) { list.table = 0x8000000000000009; }).bytes(),
                 Reason::truncated},
        FileCase{"offsetSizeOf0", with([](RawPlist& list) { list.offsetSize = 0; }).bytes(),
                 Reason::truncated},
        FileCase{"offsetSizeOf8", with([](RawPlist& list) { list.offsetSize = 8; }).bytes(), std::nullopt},
        FileCase{"offsetSizeOf9", with([](RawPlist& list) { list.offsetSize = 9; }).bytes(),
                 Reason::truncated},
        FileCase{"referenceSizeOf0", with([](RawPlist& list) { list.referenceSize = 0; }).bytes(),
                 Reason::truncated},
        FileCase{"referenceSizeOf8", with([](RawPlist& list) { list.referenceSize = 8; }).bytes(),
                 std::nullopt},
        FileCase{"referenceSizeOf9", with([](RawPlist& list) { list.referenceSize = 9; }).bytes(),
                 Reason::truncated},
        FileCase{"countTimesSizeBeyondSixtyFourBits", with([](RawPlist& list) {
                                                          list.offsetSize = 8;
                                                          list.count = 0x2000000000000001;
                                                      }).bytes(),
                 Reason::truncated},
        FileCase{"countBeyondTheFile", with([](RawPlist& list) { list.count = 0x7FFFFFFFFFFFFFFF; }).bytes(),
                 Reason::truncated},
        FileCase{"tablePastTheEnd", with([](RawPlist& list) { list.table = 1000; }).bytes(),
                 Reason::truncated},
        FileCase{"tableOneByteTooFar", with([](RawPlist& list) { list.table = 42; }).bytes(),
                 Reason::truncated},
        // The last byte of these files is the last of the table's own position: 41.
        FileCase{"tableInTheTrailer", with([](RawPlist& list) { list.table = 41; }).bytes(), std::nullopt},
        FileCase{"offsetAtTheEnd",
                 with([](RawPlist& list) { list.offsets = std::vector<std::uint64_t>{42}; }).bytes(),
                 Reason::truncated},
        FileCase{"offsetWithItsTopBit", with([](RawPlist& list) {
                                            list.offsetSize = 8;
                                            list.offsets = std::vector<std::uint64_t>{0x8000000000000008};
                                        }).bytes(),
                 Reason::truncated}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(BinaryPlist, ReadsATableThatRunsIntoTheTrailer) {
    // Two offsets: the last byte before the trailer and the trailer's first, which is 0 like the five behind.
    RawPlist list = {.objects = {"\x09"}, .offsets = std::vector<std::uint64_t>{8}};
    list.count = 2;
    // Object 1 begins at 0: the "b" of the header, 0x62, a text of two units of UTF-16.
    EXPECT_THAT(parsed(list.bytes()).objects, testing::ElementsAre(boolean(true), string("\u706C\u6973")));
}

TEST(BinaryPlist, KeepsTheNumbersOfObjectsAndOfTheTopOne) {
    const RawPlist list = {.objects = {"\x10\x07", "\x08", "\x51z"}, .top = 2};
    const BinaryPlist plist = parsed(list.bytes());
    EXPECT_THAT(plist.objects, testing::ElementsAre(integer(7), boolean(false), string("z")));
    EXPECT_EQ(plist.root, 2U);
}

TEST(BinaryPlist, TakesOffsetsInAnyOrder) {
    const RawPlist list = {.objects = {"\x10\x07", "\x08"}, .offsets = std::vector<std::uint64_t>{10, 8}};
    EXPECT_THAT(parsed(list.bytes()).objects, testing::ElementsAre(boolean(false), integer(7)));
}

TEST(BinaryPlist, ReportsAnOffsetThatIsNoneBeforeAnObjectThatIsNone) {
    const RawPlist list = {.objects = {"\xC0", "\x08"},
                           .offsetSize = 8,
                           .offsets = std::vector<std::uint64_t>{8, 0x8000000000000008}};
    EXPECT_EQ(reasonOf(list.bytes()), Reason::truncated);
}

std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t index = 0; index < count; ++index)
        all += text;
    return all;
}

// ---- Lists of another writer

struct FreeList {
    void operator()(void* list) const { plist_free(list); }
};

std::string writtenBy(plist_t list) {
    const std::unique_ptr<void, FreeList> owner(list);
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(list, &bytes, &length);
    const std::string written(bytes, length);
    plist_to_bin_free(bytes);
    return written;
}

TEST(ListOfLibplist, IsReadWithEveryKindOfValue) {
    const plist_t list = plist_new_dict();
    const std::string longText = repeated("Zoë has the tulips 🌷. ", 1000);
    const std::string bytes = repeated("\0\xFF\x80"s, 100);
    plist_dict_set_item(list, "truth", plist_new_bool(1));
    plist_dict_set_item(list, "falsehood", plist_new_bool(0));
    plist_dict_set_item(list, "one byte", plist_new_uint(200));
    plist_dict_set_item(list, "eight bytes", plist_new_uint(5'000'000'000));
    plist_dict_set_item(list, "sixteen bytes", plist_new_uint(0xFFFFFFFFFFFFFFFB));
    plist_dict_set_item(list, "real", plist_new_real(-0.1));
    plist_dict_set_item(list, "date", plist_new_date(86'400, 0));
    plist_dict_set_item(list, "ASCII", plist_new_string("Tea at four"));
    plist_dict_set_item(list, "Unicode Ω", plist_new_string(longText.c_str()));
    plist_dict_set_item(list, "data", plist_new_data(bytes.data(), bytes.size()));
    plist_dict_set_item(list, "uid", plist_new_uid(70'000));

    const BinaryPlist plist = parsed(writtenBy(list));
    const auto* entries = plist.objects[plist.root].as<PlistDictionary>();
    ASSERT_NE(entries, nullptr);
    const std::map<std::string, PlistValue> expected = {{"truth", boolean(true)},
                                                        {"falsehood", boolean(false)},
                                                        {"one byte", integer(200)},
                                                        {"eight bytes", integer(5'000'000'000)},
                                                        {"sixteen bytes", integer(-5)},
                                                        {"real", real(-0.1)},
                                                        {"date", real(86'400)},
                                                        {"ASCII", string("Tea at four")},
                                                        {"Unicode Ω", string(longText)},
                                                        {"data", blob(bytes)},
                                                        {"uid", uid(70'000)}};
    ASSERT_EQ((*entries)->size(), expected.size());
    for (const auto& [key, value] : *(*entries)) {
        const auto number = static_cast<std::size_t>(value.as<PlistUID>()->number);
        EXPECT_EQ(plist.objects[number], expected.at(*key)) << *key;
    }
}

TEST(ListOfLibplist, IsReadWithThousandsOfObjects) {
    const plist_t list = plist_new_array();
    for (std::uint64_t index = 0; index < 5000; ++index) {
        const plist_t entry = plist_new_dict();
        plist_dict_set_item(entry, "number", plist_new_uint(index));
        plist_array_append_item(list, entry);
    }
    const BinaryPlist plist = parsed(writtenBy(list));
    const auto* elements = plist.objects[plist.root].as<PlistArray>();
    ASSERT_NE(elements, nullptr);
    ASSERT_EQ((*elements)->size(), 5000U);
    const auto object = [&plist](const PlistValue& reference) {
        return plist.objects[static_cast<std::size_t>(reference.as<PlistUID>()->number)];
    };
    for (std::int64_t index = 0; index < 5000; ++index) {
        const PlistValue entry = object((**elements)[static_cast<std::size_t>(index)]);
        ASSERT_EQ(object(*(*entry.as<PlistDictionary>())->find("number")), integer(index));
    }
}

} // namespace
} // namespace quillbook
