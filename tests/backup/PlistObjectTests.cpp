#include "tests/backup/PlistFixture.h"
#include "tests/backup/RawPlist.h"

#include <cmath>
#include <cstring>
#include <limits>

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using namespace std::string_literals;
using namespace test;
using Reason = BinaryPlistError::Reason;

struct ObjectCase {
    const char* name;
    std::string bytes;
    PlistValue value;
};

class PlistObject : public testing::TestWithParam<ObjectCase> {};

TEST_P(PlistObject, IsReadFromItsBytes) {
    const RawPlist list = {.objects = {GetParam().bytes}};
    EXPECT_EQ(parsed(list.bytes()).objects.front(), GetParam().value);
}

/// The number whose bits are a double's.
double doubleOf(std::uint64_t bits) {
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

INSTANTIATE_TEST_SUITE_P(
    Table, PlistObject,
    testing::Values(
        ObjectCase{"falseMarker", "\x08", boolean(false)}, ObjectCase{"trueMarker", "\x09", boolean(true)},
        ObjectCase{"nullMarker", "\0"s, null()}, ObjectCase{"fillMarker", "\x0F", null()},
        ObjectCase{"markerBehindTrue", "\x0A", null()}, ObjectCase{"urlMarker", "\x0C", null()},
        ObjectCase{"integerOf1Byte", "\x10\xFF", integer(255)},
        ObjectCase{"integerOf2Bytes", "\x11\x01\x02", integer(258)},
        ObjectCase{"integerOf4Bytes", "\x12\xFF\xFF\xFF\xFE", integer(4294967294)},
        ObjectCase{"integerOf8BytesBelowZero", "\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFE", integer(-2)},
        ObjectCase{"integerOf8BytesAtTheLowest", "\x13\x80\0\0\0\0\0\0\0"s,
                   integer(std::numeric_limits<std::int64_t>::min())},
        ObjectCase{"integerOf16BytesKeepsTheLast8", "\x14" + std::string(7, '\1') + "\x05\0\0\0\0\0\0\0\x09"s,
                   integer(9)},
        ObjectCase{"realOf4Bytes", "\x22\x3F\xC0\0\0"s, real(1.5)},
        ObjectCase{"realOf8Bytes", "\x23\xC0\x04\0\0\0\0\0\0"s, real(-2.5)},
        ObjectCase{"realOf2BytesIsADenormal", "\x21\x3C\0"s, real(doubleOf(0x3C00))},
        ObjectCase{"realOf1ByteIsADenormal", "\x20\x01", real(std::numeric_limits<double>::denorm_min())},
        ObjectCase{"realOf16BytesKeepsTheLast8", "\x24" + std::string(8, '\7') + "\x3F\xF0\0\0\0\0\0\0"s,
                   real(1)},
        ObjectCase{"date", "\x33\x41\xC0\0\0\0\0\0\0"s, real(536870912)},
        ObjectCase{"dateOfAnotherInfoHas8BytesToo", "\x30\x41\xC0\0\0\0\0\0\0"s, real(536870912)},
        ObjectCase{"dataOf3Bytes", "\x43\0\xFFz"s, blob("\0\xFFz"s)}, ObjectCase{"noData", "\x40", blob("")},
        ObjectCase{"dataWithALengthBehindIt", "\x4F\x10\x02zy", blob("zy")},
        ObjectCase{"dataWithALengthOf2Bytes", "\x4F\x11\0\x02zy"s, blob("zy")},
        ObjectCase{"dataWithALengthOf4Bytes", "\x4F\x12\0\0\0\x02zy"s, blob("zy")},
        ObjectCase{"dataWithALengthOf8Bytes", "\x4F\x13\0\0\0\0\0\0\0\x02zy"s, blob("zy")},
        ObjectCase{"dataWithALengthOf0", "\x4F\x10\0"s, blob("")},
        ObjectCase{"textOfASCII", "\x53Tea", string("Tea")}, ObjectCase{"noText", "\x50", string("")},
        ObjectCase{"textOfUTF8", "\x54Zo\xC3\xAB", string("Zoë")},
        ObjectCase{"textWithANull", "\x53z\0y"s, string("z\0y"s)},
        ObjectCase{"textThatIsNoUTF8", "\x54z\xFFy\xC3", string("z\uFFFDy\uFFFD")},
        ObjectCase{"textOfUTF16", "\x62\0Z\0\xEB"s, string("Zë")}, ObjectCase{"noUTF16", "\x60", string("")},
        ObjectCase{"surrogatePair", "\x62\xD8\x3C\xDF\x37", string("🌷")},
        ObjectCase{"highSurrogateAlone", "\x63\0z\xD8\x3C\0y"s, string("z\uFFFDy")},
        ObjectCase{"highSurrogateAtTheEnd", "\x62\0z\xD8\x3C"s, string("z\uFFFD")},
        ObjectCase{"lowSurrogateAlone", "\x63\0z\xDF\x37\0y"s, string("z\uFFFDy")},
        ObjectCase{"surrogatesInTheWrongOrder", "\x62\xDF\x37\xD8\x3C", string("\uFFFD\uFFFD")},
        ObjectCase{"highSurrogateBeforeAPair", "\x63\xD8\x3C\xD8\x3C\xDF\x37", string("\uFFFD🌷")},
        ObjectCase{"uidOf1Byte", "\x80\xFF", uid(255)}, ObjectCase{"uidOf3Bytes", "\x82\1\0\2"s, uid(65538)},
        ObjectCase{"uidOf8Bytes", "\x87\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF",
                   uid(std::numeric_limits<std::int64_t>::max())},
        ObjectCase{"uidOf16BytesKeepsTheLast8", "\x8F" + std::string(8, '\xFF') + "\0\0\0\0\0\0\0\x03"s,
                   uid(3)},
        ObjectCase{"arrayThatHoldsItself", "\xA1\0"s, array({uid(0)})},
        ObjectCase{"arrayOfWhatIsNotThere", "\xA2\x63\0"s, array({uid(99), uid(0)})},
        ObjectCase{"noElements", "\xA0", array({})}, ObjectCase{"noPairs", "\xD0", dictionary({})}),
    [](const auto& test) { return std::string(test.param.name); });

/// An object that begins in the last bytes of the file, which say where the offset table lies.
struct EndCase {
    const char* name;
    std::string lastBytes; ///< One or two.
    std::optional<PlistValue> value;
};

class PlistObjectAtTheEnd : public testing::TestWithParam<EndCase> {};

/// A list of one object, whose marker and bytes are these. The file is filled up to where they put the table.
std::string listEndingWith(const std::string& lastBytes) {
    std::size_t table = 0;
    for (const char byte : lastBytes)
        table = table << 8U | static_cast<std::uint8_t>(byte);
    std::string list = "bplist00";
    list.resize(table, '\x09');
    list += RawPlist::big(table + 2 + 32 - lastBytes.size(), 2);
    return list + std::string(6, '\0') + "\x02\x01" + RawPlist::big(1, 8) + RawPlist::big(0, 8) +
           std::string(8 - lastBytes.size(), '\0') + lastBytes;
}

TEST_P(PlistObjectAtTheEnd, IsReadAsFarAsItGoesOrRefused) {
    const std::string bytes = listEndingWith(GetParam().lastBytes);
    if (GetParam().value) {
        EXPECT_EQ(parsed(bytes).objects.front(), *GetParam().value);
    } else {
        EXPECT_EQ(reasonOf(bytes), Reason::truncated);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, PlistObjectAtTheEnd,
                         testing::Values(EndCase{"integerWithoutBytes", "\x13", integer(0)},
                                         EndCase{"integerOf2BytesWith1", "\x11\x20", integer(0x20)},
                                         EndCase{"integerOf16BytesWith1", "\x14\x20", integer(0x20)},
                                         EndCase{"integerOf32768BytesWith1", "\x1F\x20", integer(0x20)},
                                         EndCase{"realOf4BytesWith1", "\x22\x20", real(std::ldexp(32, -149))},
                                         EndCase{"realOf8BytesWith1", "\x23\x20", real(doubleOf(0x20))},
                                         EndCase{"dateWith1Byte", "\x33\x20", real(doubleOf(0x20))},
                                         EndCase{"dateWithoutBytes", "\x33", real(0)},
                                         EndCase{"uidOf1ByteWithoutIt", "\x80", std::nullopt},
                                         EndCase{"uidOf2BytesWith1", "\x81\x20", std::nullopt},
                                         EndCase{"uidOf1Byte", "\x80\x20", uid(0x20)},
                                         EndCase{"dataOf1ByteWithoutIt", "\x41", std::nullopt},
                                         EndCase{"dataOf1Byte", "\x41\x20", blob(" ")},
                                         EndCase{"textOf2BytesWith1", "\x52\x20", std::nullopt},
                                         EndCase{"textOf1Byte", "\x51\x20", string(" ")},
                                         EndCase{"oneUnitOfUTF16With1Byte", "\x61\x20", std::nullopt},
                                         EndCase{"arrayOf2With1", "\xA2\x20", std::nullopt},
                                         EndCase{"arrayOf1", "\xA1\x20", array({uid(0x20)})},
                                         EndCase{"pairWithoutItsValue", "\xD1\x20", std::nullopt},
                                         EndCase{"lengthWithoutItsMarker", "\x4F", std::nullopt},
                                         EndCase{"lengthWithoutItsBytes", "\x4F\x10", std::nullopt}),
                         [](const auto& test) { return std::string(test.param.name); });

struct RefusedCase {
    const char* name;
    std::string bytes;
};

class RefusedLength : public testing::TestWithParam<RefusedCase> {};

TEST_P(RefusedLength, IsTruncated) {
    const RawPlist list = {.objects = {GetParam().bytes, "\x51z"}, .referenceSize = 8};
    EXPECT_EQ(reasonOf(list.bytes()), Reason::truncated);
}

INSTANTIATE_TEST_SUITE_P(
    Table, RefusedLength,
    testing::Values(RefusedCase{"lengthThatIsNoInteger", "\x4F\x51\x01"},
                    RefusedCase{"lengthOf16Bytes", "\x4F\x14" + std::string(15, '\0') + "\x01"},
                    RefusedCase{"dataPastTheEnd", "\x4F\x11\x01\0"s},
                    RefusedCase{"dataWithTheTopBit", "\x4F\x13\x80\0\0\0\0\0\0\1"s},
                    RefusedCase{"dataOfAllThereIs", "\x4F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
                    RefusedCase{"textPastTheEnd", "\x5F\x11\x01\0"s},
                    RefusedCase{"utf16PastTheEndWhenDoubled", "\x6F\x10\x20"},
                    RefusedCase{"utf16WhoseDoublingOverflows", "\x6F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
                    RefusedCase{"uidWithTheTopBit", "\x87\x80\0\0\0\0\0\0\0"s},
                    RefusedCase{"uidOf16BytesWithTheTopBit",
                                "\x8F" + std::string(8, '\0') + "\x80\0\0\0\0\0\0\0"s},
                    RefusedCase{"arrayPastTheEnd", "\xAE"},
                    RefusedCase{"arrayWhoseProductOverflows", "\xAF\x13\x20\0\0\0\0\0\0\1"s},
                    RefusedCase{"elementWithTheTopBit", "\xA1\x80\0\0\0\0\0\0\0"s},
                    RefusedCase{"dictionaryPastTheEnd", "\xD7"},
                    RefusedCase{"dictionaryWhoseProductOverflows", "\xDF\x13\x10\0\0\0\0\0\0\1"s},
                    RefusedCase{"keyWithTheTopBit", "\xD1\x80\0\0\0\0\0\0\1\0\0\0\0\0\0\0\1"s},
                    RefusedCase{"valueWithTheTopBit", "\xD1\0\0\0\0\0\0\0\1\x80\0\0\0\0\0\0\1"s},
                    RefusedCase{"keyThatIsNotThere", "\xD1\0\0\0\0\0\0\0\2\0\0\0\0\0\0\0\1"s}),
    [](const auto& test) { return std::string(test.param.name); });

class UnsupportedObject : public testing::TestWithParam<int> {};

TEST_P(UnsupportedObject, IsReportedWithItsMarkerEvenWhenNothingRefersToIt) {
    const auto marker = static_cast<std::uint8_t>(GetParam());
    const RawPlist list = {.objects = {"\x09", std::string(1, static_cast<char>(marker)), "\x08"}};
    EXPECT_EQ(errorOf(list.bytes()), BinaryPlistError(Reason::unsupportedObject, marker));
}

INSTANTIATE_TEST_SUITE_P(Markers, UnsupportedObject,
                         testing::Values(0x70, 0x7F, 0x90, 0xB0, 0xC0, 0xC3, 0xE0, 0xF0, 0xFF));

TEST(BinaryPlist, ReportsTheFirstFaultInTheOrderOfTheTable) {
    EXPECT_EQ(reasonOf(RawPlist{.objects = {"\x09", "\xC0", "\x4F\x51"}}.bytes()), Reason::unsupportedObject);
    EXPECT_EQ(reasonOf(RawPlist{.objects = {"\x09", "\x4F\x51", "\xC0"}}.bytes()), Reason::truncated);
}

// ---- Dictionaries

TEST(PlistDictionary, HoldsNumbersOfItsValues) {
    const RawPlist list = {.objects = {"\xD2\1\2\3\xFA", "\x51z", "\x51y", "\x09"}};
    EXPECT_EQ(parsed(list.bytes()).objects.front(), dictionary({{"z"s, uid(3)}, {"y"s, uid(250)}}));
}

TEST(PlistDictionary, TakesReferencesOfThreeBytes) {
    const RawPlist list = {.objects = {"\xD1\0\0\1\1\0\0"s, "\x51z"}, .referenceSize = 3};
    EXPECT_EQ(parsed(list.bytes()).objects.front(), dictionary({{"z"s, uid(65536)}}));
}

struct KeyCase {
    const char* name;
    std::string object;
};

class KeyThatIsNoString : public testing::TestWithParam<KeyCase> {};

TEST_P(KeyThatIsNoString, IsTheNumberOfItsObject) {
    const RawPlist list = {.objects = {"\xD1\2\1", "\x09", GetParam().object}};
    EXPECT_EQ(parsed(list.bytes()).objects.front(), dictionary({{"2"s, uid(1)}}));
}

INSTANTIATE_TEST_SUITE_P(Table, KeyThatIsNoString,
                         testing::Values(KeyCase{"integer", "\x10\x63"}, KeyCase{"truth", "\x09"},
                                         KeyCase{"data", "\x41z"}, KeyCase{"uid", "\x80\x07"},
                                         KeyCase{"array", "\xA1\0"s}, KeyCase{"dictionary", "\xD0"},
                                         KeyCase{"null", "\0"s}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(PlistDictionary, NamesAKeyByTheNumberThatRefersToIt) {
    // Objects 1 and 2 are one object of two numbers.
    const RawPlist list = {.objects = {"\xD2\1\2\1\2", "\x10\x63"},
                           .offsets = std::vector<std::uint64_t>{8, 13, 13}};
    EXPECT_EQ(parsed(list.bytes()).objects.front(), dictionary({{"1"s, uid(1)}, {"2"s, uid(2)}}));
}

TEST(PlistDictionary, KeepsTheLastOfEqualKeys) {
    const RawPlist list = {.objects = {"\xD4\1\2\3\1\1\2\3\4", "\x51z", "\x51y", "\x51z"}};
    EXPECT_EQ(parsed(list.bytes()).objects.front(), dictionary({{"z"s, uid(4)}, {"y"s, uid(2)}}));
}

TEST(PlistDictionary, KeepsTheLastOfAStringAndANumberThatReadAlike) {
    const RawPlist list = {.objects = {"\xD2\1\2\1\2", "\x51\x32", "\x09"}};
    EXPECT_EQ(parsed(list.bytes()).objects.front(), dictionary({{"2"s, uid(2)}}));
}

TEST(PlistDictionary, FailsWithItsKey) {
    const RawPlist list = {.objects = {"\xD1\1\0"s, "\xC5"}};
    EXPECT_EQ(errorOf(list.bytes()), BinaryPlistError(Reason::unsupportedObject, 0xC5));
}

} // namespace
} // namespace quillbook
