#include "propertylist/PropertyList.h"
#include "propertylist/PropertyListError.h"
#include "propertylist/PropertyListGuard.h"
#include "tests/support/BinaryPropertyListBuilder.h"

#include <gtest/gtest.h>

namespace quillbook {
namespace {

using List = test::BinaryPropertyListBuilder;

// ---- The binary form

/// Arrays inside each other, each with its child `copies` times.
std::string nested(std::size_t levels, std::size_t copies = 1) {
    List list;
    std::size_t top = list.ascii("a");
    for (std::size_t level = 0; level < levels; ++level)
        top = list.array(std::vector<std::size_t>(copies, top));
    return list.bytes(top);
}

TEST(BinaryPropertyListGuard, AllowsAModestList) {
    List list;
    const std::size_t leaf =
        list.array({list.ascii("a"), list.utf16(u"b"), list.data("c"), list.integer(1), list.uid(1),
                    list.object("\x08"), list.object("\x09"), list.object("\x23" + std::string(8, '\0')),
                    list.object("\x33" + std::string(8, '\0'))});
    EXPECT_TRUE(isSafeBinaryPropertyList(list.bytes(list.dictionary({{"a", leaf}, {"b", leaf}}))));
}

TEST(BinaryPropertyListGuard, AllowsNestingUpToItsLimit) {
    EXPECT_TRUE(isSafeBinaryPropertyList(nested(127)));
    EXPECT_FALSE(isSafeBinaryPropertyList(nested(128)));
}

TEST(BinaryPropertyListGuard, RefusesDeepNesting) {
    EXPECT_FALSE(isSafeBinaryPropertyList(nested(100000)));
}

TEST(BinaryPropertyListGuard, RefusesNestingThatIsDeepThroughSharedParts) {
    List list;
    std::size_t top = list.ascii("a");
    std::vector<std::size_t> parts;
    for (int level = 0; level < 200; ++level)
        parts.push_back(top = list.array({top}));
    EXPECT_FALSE(isSafeBinaryPropertyList(list.bytes(list.array(parts))));
}

TEST(BinaryPropertyListGuard, RefusesSharedPartsThatDoubleWithEveryLevel) {
    EXPECT_TRUE(isSafeBinaryPropertyList(nested(8, 2)));
    EXPECT_FALSE(isSafeBinaryPropertyList(nested(40, 2)));
}

TEST(BinaryPropertyListGuard, RefusesALongTextThatIsSharedOften) {
    List list;
    const std::size_t text = list.ascii(std::string(100000, 'a'));
    EXPECT_FALSE(isSafeBinaryPropertyList(list.bytes(list.array(std::vector<std::size_t>(1000, text)))));
}

TEST(BinaryPropertyListGuard, RefusesAListThatHoldsItself) {
    List list;
    EXPECT_FALSE(isSafeBinaryPropertyList(list.bytes(list.array({0}))));
    List pair;
    pair.array({1});
    EXPECT_FALSE(isSafeBinaryPropertyList(pair.bytes(pair.array({0}))));
}

TEST(BinaryPropertyListGuard, RefusesMoreReferencesThanTheListHasBytes) {
    // Thousands of table entries for one array: the file stays small, the walk would not.
    std::string bytes = "bplist00\x50" + List::head(0xA0, 3000);
    for (int entry = 0; entry < 3000; ++entry)
        bytes += List::bigEndian(0, 4);
    const std::size_t outer = bytes.size();
    bytes += List::head(0xA0, 2000);
    for (std::uint64_t entry = 2; entry < 2002; ++entry)
        bytes += List::bigEndian(entry, 4);
    const std::size_t table = bytes.size();
    bytes += List::bigEndian(8, 4) + List::bigEndian(outer, 4);
    for (int entry = 0; entry < 2000; ++entry)
        bytes += List::bigEndian(9, 4);
    bytes += std::string(6, '\0') + "\x04\x04" + List::bigEndian(2002, 8) + List::bigEndian(1, 8) +
             List::bigEndian(table, 8);
    EXPECT_FALSE(isSafeBinaryPropertyList(bytes));
}

std::string binaryOfSize(std::size_t dataBytes) {
    List list;
    return list.bytes(list.data(std::string(dataBytes, 'a')));
}

TEST(BinaryPropertyListGuard, RefusesAListLongerThanItsCallerAllows) {
    EXPECT_TRUE(isSafeBinaryPropertyList(binaryOfSize(longestPropertyList - 100)));
    EXPECT_FALSE(isSafeBinaryPropertyList(binaryOfSize(longestPropertyList)));
    EXPECT_TRUE(isSafeBinaryPropertyList(binaryOfSize(longestPropertyList), 2 * longestPropertyList));
    EXPECT_FALSE(isSafeBinaryPropertyList(binaryOfSize(1000), 1000));
}

TEST(BinaryPropertyListGuard, RefusesMoreSmallValuesThanMemoryShouldHold) {
    const auto withReferences = [](std::size_t count) {
        List list;
        list.ascii("a");
        return list.bytes(list.object(List::head(0xA0, count) + std::string(count * 4, '\0')));
    };
    constexpr std::size_t allowed = 64U << 20U;
    EXPECT_TRUE(isSafeBinaryPropertyList(withReferences(1'000'000), allowed));
    EXPECT_FALSE(isSafeBinaryPropertyList(withReferences(4'000'000), allowed));
}

TEST(BinaryPropertyListGuard, RefusesATableOfMoreObjectsThanMemoryShouldHold) {
    constexpr std::size_t count = 20'000'000;
    std::string bytes = "bplist00\x50";
    bytes.append(count, '\x08');
    bytes += std::string(6, '\0') + "\x01\x04" + List::bigEndian(count, 8) + List::bigEndian(0, 8) +
             List::bigEndian(9, 8);
    EXPECT_FALSE(isSafeBinaryPropertyList(bytes, std::size_t{64} << 20U));
}

struct ObjectCase {
    const char* name;
    std::string object;
};

class BrokenObject : public testing::TestWithParam<ObjectCase> {};

TEST_P(BrokenObject, IsRefused) {
    List list;
    list.ascii("a");
    EXPECT_FALSE(isSafeBinaryPropertyList(list.bytes(list.object(GetParam().object))));
}

const auto nameOf = [](const auto& entry) { return std::string(entry.param.name); };
INSTANTIATE_TEST_SUITE_P(
    Table, BrokenObject,
    testing::Values(ObjectCase{"nothing", ""}, ObjectCase{"textCutShort", "\x5E"},
                    ObjectCase{"longTextCutShort", "\x5F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
                    ObjectCase{"countIsNoInteger", "\x5F\x51"}, ObjectCase{"countMissing", "\x5F"},
                    ObjectCase{"countOfSixteenBytes", "\x5F\x14" + std::string(16, '\0')},
                    ObjectCase{"countWrapsRound", "\xAF\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
                    ObjectCase{"twoByteUnitsCutShort", "\x62" + std::string(3, '\0')},
                    ObjectCase{"referencesCutShort", "\xA2" + std::string(7, '\0')},
                    ObjectCase{"keysWithoutValues", "\xD1" + std::string(4, '\0')},
                    ObjectCase{"referencePastTheTable", "\xA1" + List::bigEndian(9, 4)},
                    ObjectCase{"integerTooWide", "\x15" + std::string(32, '\0')},
                    ObjectCase{"set", "\xC1" + std::string(4, '\0')}, ObjectCase{"unusedKind", "\x70"},
                    ObjectCase{"dateCutShort", "\x33" + std::string(7, '\0')}),
    nameOf);

struct TrailerCase {
    const char* name;
    std::size_t offsetFromEnd;
    std::string replacement;
};

class BrokenTrailer : public testing::TestWithParam<TrailerCase> {};

TEST_P(BrokenTrailer, IsRefused) {
    std::string bytes = nested(3);
    ASSERT_TRUE(isSafeBinaryPropertyList(bytes));
    bytes.replace(bytes.size() - GetParam().offsetFromEnd, GetParam().replacement.size(),
                  GetParam().replacement);
    EXPECT_FALSE(isSafeBinaryPropertyList(bytes));
}

INSTANTIATE_TEST_SUITE_P(Table, BrokenTrailer,
                         testing::Values(TrailerCase{"offsetsOfNoBytes", 26, std::string(1, '\0')},
                                         TrailerCase{"offsetsOfNineBytes", 26, "\x09"},
                                         TrailerCase{"referencesOfNoBytes", 25, std::string(1, '\0')},
                                         TrailerCase{"referencesOfManyBytes", 25, "\xFF"},
                                         TrailerCase{"noObjects", 24, std::string(8, '\0')},
                                         TrailerCase{"moreObjectsThanBytes", 24, List::bigEndian(1000000, 8)},
                                         TrailerCase{"objectCountWrapsRound", 24,
                                                     List::bigEndian(1ULL << 62U, 8)},
                                         TrailerCase{"topPastTheObjects", 16, List::bigEndian(4, 8)},
                                         TrailerCase{"tablePastTheEnd", 8, List::bigEndian(100000, 8)},
                                         TrailerCase{"tableWrapsRound", 8, std::string(8, '\xFF')},
                                         TrailerCase{"tableInTheHeader", 8, std::string(8, '\0')}),
                         nameOf);

TEST(BinaryPropertyListGuard, RefusesWhatIsNoBinaryPropertyList) {
    EXPECT_FALSE(isSafeBinaryPropertyList(""));
    EXPECT_FALSE(isSafeBinaryPropertyList("bplist00"));
    EXPECT_FALSE(isSafeBinaryPropertyList("bplist00" + std::string(31, '\0')));
    EXPECT_FALSE(isSafeBinaryPropertyList("bplist15" + nested(1).substr(8)));
    EXPECT_FALSE(isSafeBinaryPropertyList(std::string(1000, '\0')));
}

// ---- The XML form

struct XMLCase {
    const char* name;
    std::string text;
    bool isSafe;
};

class XMLForm : public testing::TestWithParam<XMLCase> {};

TEST_P(XMLForm, AllowsOnlyTheFormOfApplesWriters) {
    EXPECT_EQ(isSafeXMLPropertyList(GetParam().text), GetParam().isSafe);
}

std::string inRoot(std::string_view contents) {
    return "<plist version=\"1.0\">" + std::string(contents) + "</plist>";
}

std::string repeated(std::string_view text, std::size_t times) {
    std::string all;
    for (std::size_t time = 0; time < times; ++time)
        all += text;
    return all;
}

std::string nestedArrays(std::size_t levels) {
    return inRoot(repeated("<array>", levels) + repeated("</array>", levels));
}

std::string repeatedKeys(std::size_t count, std::size_t length = 34) {
    return "<dict>" + repeated("<key>" + std::string(length, 'a') + "</key><true/>", count) + "</dict>";
}

std::string dictionaryOf(std::size_t count, std::size_t keyLength) {
    return inRoot(repeatedKeys(count, keyLength));
}

INSTANTIATE_TEST_SUITE_P(
    Table, XMLForm,
    testing::Values(
        XMLCase{"allElements",
                inRoot("<dict><key>a</key><array><string>b</string><integer>1</integer><real>1</real><true/"
                       "><false />"
                       "<date>2001-01-01T00:00:00Z</date><data>AA==</data></array></dict>"),
                true},
        XMLCase{"prolog", "<?xml version=\"1.0\"?><!DOCTYPE plist PUBLIC \"a\" \"b\">" + inRoot("<dict/>"),
                true},
        XMLCase{"modestNesting", nestedArrays(127), true},
        XMLCase{"oneLevelTooMany", nestedArrays(128), false},
        XMLCase{"deepNesting", nestedArrays(300000), false},
        XMLCase{"deepNestingLeftOpen", "<plist>" + repeated("<array>", 300000), false},
        XMLCase{"closingTagOfAnotherElement", inRoot("<array></dict>"), false},
        XMLCase{"closingTagsInAComment", inRoot("<array><!-- </array> -->"), false},
        XMLCase{"closingTagsInCDATA", inRoot("<array><![CDATA[</array>]]>"), false},
        XMLCase{"closingTagInAnAttribute", inRoot("<array a=\"</array>\">"), false},
        XMLCase{"endOfTagInAnAttribute", inRoot("<array a=\"/>\">"), false},
        XMLCase{"instructionInside", inRoot("<?xml </array> ?>"), false},
        XMLCase{"entityDefinitions", "<!DOCTYPE plist [<!ENTITY a \"b\">]>" + inRoot("<dict/>"), false},
        XMLCase{"unknownElement", inRoot("<tree></tree>"), false}, XMLCase{"emptyRoot", "<plist/>", false},
        XMLCase{"elementBeforeTheRoot", "<?xml version=\"1.0\"?><dict></dict>", false},
        XMLCase{"secondRoot", inRoot("") + inRoot(""), false},
        XMLCase{"endMissing", "<plist><dict></dict>", false},
        XMLCase{"elementLeftOpen", "<plist><dict>", false},
        XMLCase{"prologAlone", "<?xml version=\"1.0\"?>", false},
        XMLCase{"tagLeftOpen", "<plist version=\"1.0\"", false}, XMLCase{"text", "Tea at four", false},
        XMLCase{"nothing", "", false}, XMLCase{"blanks", "   ", false},
        XMLCase{"keysOfManyApps", dictionaryOf(5000, 150), true},
        XMLCase{"keysThatCouldCollide", dictionaryOf(20000, 34), false},
        XMLCase{"fewerKeysThatAreLonger", dictionaryOf(5000, 1000), false},
        XMLCase{"manyDictionariesOfManyKeys",
                inRoot("<array>" + repeated(repeatedKeys(1000), 200) + "</array>"), false},
        XMLCase{"tooManyEmptyKeys", inRoot("<dict>" + repeated("<key/><true/>", 20000) + "</dict>"), false},
        XMLCase{"keysOutsideADictionary", "<plist><key>a</key></plist></key>", false},
        XMLCase{"manySmallValues", inRoot("<array>" + repeated("<true/>", 1000000) + "</array>"), true},
        XMLCase{"entitiesOfManyStrings",
                inRoot("<array>" + repeated("<string>a &amp; b</string>", 100000) + "</array>"), true},
        XMLCase{"someEntities", inRoot("<string>" + repeated("&amp;", 10000) + "</string>"), true},
        XMLCase{"tooManyEntities", inRoot("<string>" + repeated("&amp;", 100000) + "</string>"), false},
        XMLCase{"tooManyEntitiesBehindTheLastTag", inRoot("") + repeated("&amp;", 100000), false}),
    nameOf);

TEST(XMLPropertyListGuard, RefusesMoreSmallValuesThanMemoryShouldHold) {
    const std::string list = inRoot("<array>" + repeated("<true/>", 4'000'000) + "</array>");
    EXPECT_FALSE(isSafeXMLPropertyList(list, 2 * longestPropertyList));
}

TEST(XMLPropertyListGuard, RefusesAListLongerThanItsCallerAllows) {
    const auto ofSize = [](std::size_t size) {
        return inRoot("<data>" + std::string(size, 'A') + "</data>");
    };
    EXPECT_TRUE(isSafeXMLPropertyList(ofSize(longestPropertyList - 100)));
    EXPECT_FALSE(isSafeXMLPropertyList(ofSize(longestPropertyList)));
    EXPECT_TRUE(isSafeXMLPropertyList(ofSize(longestPropertyList), 2 * longestPropertyList));
}

// ---- What is refused is not read

TEST(PropertyListGuard, KeepsHostileListsFromTheReader) {
    for (const std::string& bytes :
         {nested(200000), nested(60, 2), nestedArrays(300000), "<plist>" + repeated("<array>", 1000000)})
        EXPECT_THROW(PropertyList(bytes, "a"), PropertyListError);
}

} // namespace
} // namespace quillbook
