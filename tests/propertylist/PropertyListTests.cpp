#include "propertylist/PropertyList.h"
#include "propertylist/PropertyListError.h"
#include "tests/support/BinaryPropertyListBuilder.h"
#include "tests/support/PropertyListFixture.h"

#include <bit>
#include <limits>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

using test::PropertyListBuilder;
using test::PropertyListForm;
using List = test::BinaryPropertyListBuilder;

class BothForms : public testing::TestWithParam<PropertyListForm> {
protected:
    static PropertyList read(const PropertyListBuilder& list) {
        return {list.bytes(GetParam()), "List.plist"};
    }
};

INSTANTIATE_TEST_SUITE_P(PropertyList, BothForms,
                         testing::Values(PropertyListForm::xml, PropertyListForm::binary),
                         [](const auto& test) {
                             return test.param == PropertyListForm::xml ? "xml" : "binary";
                         });

TEST_P(BothForms, GivesAString) {
    EXPECT_EQ(read(PropertyListBuilder().string("a", "Ada’s & Grace’s <phone> 🌷")).string("a"),
              "Ada’s & Grace’s <phone> 🌷");
}

TEST_P(BothForms, GivesAnEmptyString) {
    EXPECT_EQ(read(PropertyListBuilder().string("a", "")).string("a"), "");
}

TEST_P(BothForms, GivesBooleans) {
    const auto list = read(PropertyListBuilder().boolean("a", true).boolean("b", false));
    EXPECT_EQ(list.boolean("a"), true);
    EXPECT_EQ(list.boolean("b"), false);
}

TEST_P(BothForms, GivesIntegers) {
    const auto list =
        read(PropertyListBuilder().integer("a", 7).integer("b", std::numeric_limits<std::int64_t>::max()));
    EXPECT_EQ(list.integer("a"), 7);
    EXPECT_EQ(list.integer("b"), std::numeric_limits<std::int64_t>::max());
}

TEST_P(BothForms, GivesData) {
    using namespace std::string_view_literals;
    EXPECT_EQ(read(PropertyListBuilder().data("a", "\x00\xFFk"sv)).data("a"), (Data{0x00, 0xFF, 'k'}));
}

TEST_P(BothForms, GivesEmptyData) {
    EXPECT_EQ(read(PropertyListBuilder().data("a", "")).data("a"), Data());
}

TEST_P(BothForms, GivesADate) {
    EXPECT_EQ(read(PropertyListBuilder().date("a", 789'015'845)).date("a"), Date{789'015'845});
}

TEST_P(BothForms, GivesADateBeforeTheReferenceDate) {
    EXPECT_EQ(read(PropertyListBuilder().date("a", -86'400)).date("a"), Date{-86'400});
}

TEST_P(BothForms, GivesNothingForAKeyThatIsNotThere) {
    const auto list = read(PropertyListBuilder().string("a", "b"));
    EXPECT_FALSE(list.hasKey("b"));
    EXPECT_EQ(list.string("b"), std::nullopt);
    EXPECT_EQ(list.boolean("b"), std::nullopt);
    EXPECT_EQ(list.integer("b"), std::nullopt);
    EXPECT_EQ(list.data("b"), std::nullopt);
    EXPECT_EQ(list.date("b"), std::nullopt);
}

TEST_P(BothForms, GivesNothingForAValueOfAnotherKind) {
    const auto list = read(PropertyListBuilder().string("text", "1").integer("number", 1));
    EXPECT_TRUE(list.hasKey("text"));
    EXPECT_EQ(list.string("number"), std::nullopt);
    EXPECT_EQ(list.boolean("number"), std::nullopt);
    EXPECT_EQ(list.integer("text"), std::nullopt);
    EXPECT_EQ(list.data("text"), std::nullopt);
    EXPECT_EQ(list.date("number"), std::nullopt);
}

TEST_P(BothForms, IsADictionaryAlsoWithoutEntries) {
    EXPECT_TRUE(read(PropertyListBuilder()).isDictionary());
}

TEST_P(BothForms, ReadsADictionaryOfFiveThousandKeys) {
    const auto list = read(PropertyListBuilder().apps("Applications", 5000).string("a", "b"));
    EXPECT_TRUE(list.hasKey("Applications"));
    EXPECT_EQ(list.string("a"), "b");
}

TEST_P(BothForms, ReadsAListOf64MegabytesForACallerThatExpectsOne) {
    PropertyListBuilder list;
    for (int number = 0; number < 8; ++number)
        list.data(std::to_string(number).c_str(), std::string(8'000'000, static_cast<char>(number)));
    const std::string bytes = list.string("name", "Ada & Grace").bytes(GetParam());
    ASSERT_GE(bytes.size(), 64'000'000U);
    EXPECT_EQ(PropertyList(bytes, "Info.plist", std::size_t{256} << 20U).string("name"), "Ada & Grace");
    EXPECT_THROW(PropertyList(bytes, "Info.plist"), PropertyListError);
}

TEST_P(BothForms, RefusesAListCutShortAnywhere) {
    const std::string bytes = PropertyListBuilder().string("a", "b").data("c", "d").bytes(GetParam());
    const std::size_t end =
        bytes.size() - (GetParam() == PropertyListForm::xml && bytes.ends_with('\n') ? 1 : 0);
    for (std::size_t length = 0; length < end; ++length)
        EXPECT_THROW(PropertyList(bytes.substr(0, length), "a"), PropertyListError) << length;
}

TEST_P(BothForms, CopiesOutliveTheirSource) {
    std::optional<PropertyList> first = read(PropertyListBuilder().string("a", "b"));
    const PropertyList copy = *first;
    first.reset();
    EXPECT_EQ(copy.string("a"), "b");
}

// ---- Values that only one of the forms can hold

std::optional<Date> binaryDate(double seconds) {
    List list;
    const std::size_t date = list.object("\x33" + List::bigEndian(std::bit_cast<std::uint64_t>(seconds), 8));
    return PropertyList(list.bytes(list.dictionary({{"a", date}})), "a").date("a");
}

TEST(PropertyList, KeepsTheFractionOfADate) {
    EXPECT_EQ(binaryDate(789'015'845.25), Date{789'015'845.25});
    EXPECT_EQ(binaryDate(-5.75), Date{-5.75});
}

TEST(PropertyList, GivesADateFarAway) {
    EXPECT_EQ(binaryDate(1e10), Date{1e10});
    EXPECT_EQ(binaryDate(-1e300), Date{-1e300});
}

TEST(PropertyList, GivesNothingForADateThatIsNoFiniteNumber) {
    EXPECT_EQ(binaryDate(std::numeric_limits<double>::quiet_NaN()), std::nullopt);
    EXPECT_EQ(binaryDate(std::numeric_limits<double>::infinity()), std::nullopt);
    EXPECT_EQ(binaryDate(-std::numeric_limits<double>::infinity()), std::nullopt);
}

TEST(PropertyList, RepairsAStringThatIsNoUTF8) {
    EXPECT_EQ(PropertyList("<plist><dict><key>a</key><string>\xFFz</string></dict></plist>", "a").string("a"),
              "\uFFFDz");
    List list;
    EXPECT_EQ(PropertyList(list.bytes(list.dictionary({{"a", list.ascii("\xFFz")}})), "a").string("a"),
              "\uFFFDz");
}

TEST(PropertyList, GivesANegativeInteger) {
    EXPECT_EQ(PropertyList("<plist><dict><key>a</key><integer>-3</integer></dict></plist>", "a").integer("a"),
              -3);
}

TEST(PropertyList, FindsNothingWhereTheTopValueIsNoDictionary) {
    const PropertyList list("<plist><array><string>a</string></array></plist>", "a");
    EXPECT_FALSE(list.isDictionary());
    EXPECT_FALSE(list.hasKey("a"));
    EXPECT_EQ(list.string("a"), std::nullopt);
}

TEST(PropertyList, ReadsBehindAByteOrderMark) {
    EXPECT_TRUE(PropertyList("\xEF\xBB\xBF<plist><dict/></plist>", "a").isDictionary());
}

TEST(PropertyList, ReadsABinaryDictionaryWhoseManyKeysCollide) {
    List list;
    const std::size_t value = list.object("\x09");
    std::string keys;
    std::string values;
    constexpr std::size_t count = 1U << 16U;
    for (std::size_t number = 0; number < count; ++number) {
        // "ab" and "bA" have the same sum in the hash that libplist keeps of XML keys.
        std::string key;
        for (unsigned bit = 0; bit < 16; ++bit)
            key += (number >> bit) % 2 == 0 ? "ab" : "bA";
        keys += List::bigEndian(list.ascii(key), 4);
        values += List::bigEndian(value, 4);
    }
    const std::size_t top = list.object(List::head(0xD0, count).append(keys).append(values));
    EXPECT_EQ(PropertyList(list.bytes(top), "a").boolean("abababababababababababababababab"), true);
}

struct UnreadableCase {
    const char* name;
    std::string bytes;
};

class Unreadable : public testing::TestWithParam<UnreadableCase> {};

TEST_P(Unreadable, ThrowsAnError) {
    EXPECT_THROW(PropertyList(GetParam().bytes, "a"), PropertyListError);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Unreadable,
    testing::Values(UnreadableCase{"nothing", ""}, UnreadableCase{"text", "Tea at four"},
                    UnreadableCase{"zeros", std::string(4096, '\0')},
                    UnreadableCase{"headerAlone", "bplist00"},
                    UnreadableCase{"emptyRoot", "<plist version=\"1.0\"></plist>"},
                    UnreadableCase{"keyWithoutValue", "<plist><dict><key>a</key></dict"},
                    UnreadableCase{"valueWithoutKey", "<plist><dict><true/></dict></plist>"},
                    UnreadableCase{"database", "SQLite format 3" + std::string(4096, '\0')}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(PropertyListError, SaysWhichListCouldNotBeRead) {
    try {
        const PropertyList list("Tea at four", "Manifest\xFF.plist");
        FAIL() << "read what is no property list";
    } catch (const PropertyListError& error) {
        EXPECT_EQ(error.description(), "The property list “Manifest\uFFFD.plist” could not be read.");
    }
}

} // namespace
} // namespace quillbook
