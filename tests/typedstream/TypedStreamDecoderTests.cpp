#include "tests/support/TypedStreamBuilder.h"
#include "typedstream/TypedStreamDecoder.h"

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using namespace typedstream;
using test::TypedStreamBuilder;
using Bytes = std::vector<std::uint8_t>;
using Items = std::vector<Archivable>;
using Error = TypedStreamDecoderError;

constexpr std::uint64_t headerLength = 16;

/// What the archive holds, or why it cannot be read.
std::variant<Items, Error::Reason> outcome(const Bytes& archive) {
    try {
        return TypedStreamDecoder::decode(archive);
    } catch (const Error& error) {
        return error.reason();
    }
}

Bytes withHeader(const Bytes& body) {
    return TypedStreamBuilder().raw(body).bytes();
}

std::variant<Items, Error::Reason> failure(const Error::Reason& reason) {
    return reason;
}

std::variant<Items, Error::Reason> items(const Items& list) {
    return list;
}

Object number(std::int64_t value) {
    return value;
}

const Class classA{"A", 7};
const auto nameOf = [](const auto& entry) { return std::string(entry.param.name); };

// ---- The header

struct ArchiveCase {
    const char* name;
    Bytes archive;
    std::variant<Items, Error::Reason> expected;
};

class Header : public testing::TestWithParam<ArchiveCase> {};

TEST_P(Header, IsCheckedWhole) {
    EXPECT_EQ(outcome(GetParam().archive), GetParam().expected);
}

Bytes header(std::uint8_t version, std::uint8_t length, std::string_view signature,
             const Bytes& systemVersion) {
    Bytes bytes = {version, length};
    bytes.insert(bytes.end(), signature.begin(), signature.end());
    bytes.insert(bytes.end(), systemVersion.begin(), systemVersion.end());
    return bytes;
}

const Bytes thousand = {0x81, 0xE8, 0x03};
INSTANTIATE_TEST_SUITE_P(
    Table, Header,
    testing::Values(
        ArchiveCase{"alone", header(4, 11, "streamtyped", thousand), items({})},
        ArchiveCase{"systemVersionInFourBytes", header(4, 11, "streamtyped", {0x82, 0xE8, 0x03, 0, 0}),
                    items({})},
        ArchiveCase{"versionThree", header(3, 11, "streamtyped", thousand), failure(Error::InvalidHeader())},
        ArchiveCase{"otherSystemVersion", header(4, 11, "streamtyped", {0x81, 0xE9, 0x03}),
                    failure(Error::InvalidHeader())},
        ArchiveCase{"otherSignature", header(4, 11, "typedstream", thousand),
                    failure(Error::InvalidHeader())},
        ArchiveCase{"shorterSignature", header(4, 10, "streamtyped", thousand),
                    failure(Error::InvalidHeader())},
        ArchiveCase{"longerSignature", header(4, 12, "streamtyped", thousand),
                    failure(Error::InvalidHeader())},
        ArchiveCase{"muchLongerSignature", header(4, 200, "streamtyped", thousand),
                    failure(Error::InvalidHeader())},
        ArchiveCase{"signatureOfOtherBytes", header(4, 11, "\xFFtreamtyped", thousand),
                    failure(Error::StringParseError{{"Invalid UTF-8", 0}})},
        ArchiveCase{"nothing", {}, failure(Error::OutOfBounds{0, 0})},
        ArchiveCase{"versionAlone", {0x04}, failure(Error::OutOfBounds{1, 1})},
        ArchiveCase{"signatureCutShort", header(4, 11, "stream", {}), failure(Error::OutOfBounds{13, 8})},
        ArchiveCase{"noSystemVersion", header(4, 11, "streamtyped", {}), failure(Error::OutOfBounds{13, 13})},
        ArchiveCase{"systemVersionCutShort", header(4, 11, "streamtyped", {0x81, 0xE8}),
                    failure(Error::OutOfBounds{16, 15})}),
    nameOf);

// ---- What stands behind the header

struct BodyCase {
    const char* name;
    Bytes body;
    Items expected;
};

class Values : public testing::TestWithParam<BodyCase> {};

TEST_P(Values, AreReadByTheirTypes) {
    EXPECT_EQ(outcome(withHeader(GetParam().body)), items(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Table, Values,
    testing::Values(
        BodyCase{"signedInteger", {0x84, 1, 'i', 0x05}, {DataItem{{number(5)}}}},
        BodyCase{"unsignedInteger", {0x84, 1, 'Q', 0xFF}, {DataItem{{std::uint64_t{255}}}}},
        BodyCase{"float", {0x84, 1, 'f', 0x83, 0, 0, 0xC0, 0x3F}, {DataItem{{1.5F}}}},
        BodyCase{"double", {0x84, 1, 'd', 0x83, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F}, {DataItem{{1.5}}}},
        BodyCase{"text", {0x84, 1, '+', 2, 'H', 'i'}, {DataItem{{"Hi"}}}},
        BodyCase{"emptyText", {0x84, 1, '+', 0}, {DataItem{{""}}}},
        BodyCase{"arrayIsRawBytes",
                 {0x84, 4, '[', '3', 'i', ']', 1, 0x86, 0x84},
                 {DataItem{{ByteArray{{1, 0x86, 0x84}}}}}},
        BodyCase{
            "unknownTypeTakesNoBytes", {0x84, 2, '#', 'i', 5}, {DataItem{{std::uint8_t{'#'}, number(5)}}}},
        BodyCase{"severalInOrder",
                 {0x84, 3, 'i', 'I', '+', 1, 2, 1, 'x'},
                 {DataItem{{number(1), std::uint64_t{2}, "x"}}}},
        BodyCase{"emptySignature", {0x84, 0}, {}}, BodyCase{"noBodyButEnds", {0x86, 0x86, 0x86}, {}},
        BodyCase{"endsBehindTheLastValue", {0x84, 1, 'i', 5, 0x86, 0x86}, {DataItem{{number(5)}}}},
        BodyCase{"endsBetweenValues",
                 {0x84, 1, 'i', 5, 0x86, 0x84, 1, 'i', 6},
                 {DataItem{{number(5)}}, DataItem{{number(6)}}}}),
    nameOf);

class TypeReference : public testing::TestWithParam<BodyCase> {};

TEST_P(TypeReference, StandsForAnEarlierList) {
    EXPECT_EQ(outcome(withHeader(GetParam().body)), items(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(Table, TypeReference,
                         testing::Values(BodyCase{"lowestByteIsIndexZero",
                                                  {0x84, 1, 'i', 5, 0x92, 6},
                                                  {DataItem{{number(5)}}, DataItem{{number(6)}}}},
                                         BodyCase{"secondList",
                                                  {0x84, 1, 'i', 5, 0x84, 1, 'I', 6, 0x93, 7},
                                                  {DataItem{{number(5)}}, DataItem{{std::uint64_t{6}}},
                                                   DataItem{{std::uint64_t{7}}}}},
                                         BodyCase{"pastTheTableIsNothing",
                                                  {0x84, 1, 'i', 5, 0x93, 0x92, 6},
                                                  {DataItem{{number(5)}}, DataItem{{number(6)}}}},
                                         BodyCase{"equalBytesAreOneReference",
                                                  {0x84, 1, 'i', 5, 0x92, 0x92, 0x92, 6},
                                                  {DataItem{{number(5)}}, DataItem{{number(6)}}}},
                                         BodyCase{"classNamesAreListsToo",
                                                  {0x84, 1, '@', 0x84, 0x84, 1, 'A', 7, 0x85, 0x84, 1, 'i', 5,
                                                   0x93, 0x86},
                                                  {ObjectItem{classA, {number(5)}}, DataItem{{"A"}}}}),
                         nameOf);

TEST(TypeReference, BelowTheReferenceRangeWrapsRound) {
    TypedStreamBuilder builder;
    for (int list = 0; list < 110; ++list)
        builder.raw({0x84, 0});
    builder.raw({0x84, 1, '+', 1, 'a'}).raw({0x00, 1, 'b'});
    EXPECT_EQ(TypedStreamDecoder::decode(builder.bytes()), (Items{DataItem{{"a"}}, DataItem{{"b"}}}));
}

class Failure : public testing::TestWithParam<ArchiveCase> {};

TEST_P(Failure, EndsTheDecodeWithItsReason) {
    EXPECT_EQ(outcome(withHeader(GetParam().archive)), GetParam().expected);
}

auto outOfBounds(std::uint64_t index, std::uint64_t length) {
    return failure(Error::OutOfBounds{headerLength + index, headerLength + length});
}

INSTANTIATE_TEST_SUITE_P(
    Table, Failure,
    testing::Values(
        ArchiveCase{"fourByteNumberCutShort", {0x84, 1, 'i', 0x82, 1, 2}, outOfBounds(8, 6)},
        ArchiveCase{"arrayCutShort", {0x84, 3, '[', '9', 'c', 1, 2}, outOfBounds(14, 7)},
        ArchiveCase{"hugeArray", {0x84, 6, '[', '9', '9', '9', '9', '9', 1}, outOfBounds(100007, 9)},
        ArchiveCase{"textCutShort", {0x84, 1, '+', 5, 'a'}, outOfBounds(9, 5)},
        ArchiveCase{"signatureCutShort", {0x84, 9, 'i'}, outOfBounds(11, 3)},
        ArchiveCase{"signatureMissing", {0x84}, outOfBounds(1, 1)},
        ArchiveCase{"valueMissing", {0x84, 1, 'i'}, outOfBounds(3, 3)},
        ArchiveCase{"referenceIsTheLastByte", {0x84, 1, 'i', 5, 0x92}, outOfBounds(5, 5)},
        ArchiveCase{"equalBytesToTheEnd", {0x84, 1, 'i', 5, 0x92, 0x92}, outOfBounds(6, 6)},
        ArchiveCase{"classIsOnlyStarts", {0x84, 1, '@', 0x84, 0x84}, outOfBounds(5, 5)},
        ArchiveCase{"classNameCutShort", {0x84, 1, '@', 0x84, 3, 'A'}, outOfBounds(8, 6)},
        ArchiveCase{"classVersionMissing", {0x84, 1, '@', 0x84, 1, 'A'}, outOfBounds(6, 6)},
        ArchiveCase{"superclassMissing", {0x84, 1, '@', 0x84, 1, 'A', 7}, outOfBounds(7, 7)},
        ArchiveCase{"objectMissing", {0x84, 1, '@'}, outOfBounds(3, 3)},
        ArchiveCase{"embeddedDataMissing", {0x84, 1, '*'}, outOfBounds(4, 3)},
        ArchiveCase{"bracketAlone", {0x84, 1, '['}, failure(Error::InvalidArray())},
        ArchiveCase{"arrayOfZero", {0x84, 3, '[', '0', ']'}, failure(Error::InvalidArray())},
        ArchiveCase{"typeReferenceTooLow", {0x91, 0x00}, failure(Error::InvalidPointer{0x91})},
        ArchiveCase{"objectReferenceTooLow", {0x84, 1, '@', 0x90}, failure(Error::InvalidPointer{0x90})},
        ArchiveCase{"superclassReferenceTooLow",
                    {0x84, 1, '@', 0x84, 1, 'A', 7, 0x91},
                    failure(Error::InvalidPointer{0x91})},
        ArchiveCase{"textIsNotUTF8",
                    {0x84, 1, '+', 2, 'a', 0xFF},
                    failure(Error::StringParseError{{"Invalid UTF-8", 0}})},
        ArchiveCase{"textIsNotUTF8BehindGoodItems",
                    {0x84, 1, 'i', 5, 0x84, 1, '+', 1, 0x80},
                    failure(Error::StringParseError{{"Invalid UTF-8", 0}})},
        ArchiveCase{"classNameIsNotUTF8",
                    {0x84, 1, '@', 0x84, 1, 0xFF, 7, 0x85},
                    failure(Error::StringParseError{{"Invalid UTF-8", 0}})}),
    nameOf);

// ---- Objects. Slot 0 of the table is the object of class A, slot 1 the class.

const Bytes objectOfA = {0x84, 1, '@', 0x84, 0x84, 1, 'A', 7, 0x85, 0x84, 1, 'i', 5, 0x86};
const ObjectItem fiveOfA{classA, {number(5)}};

Bytes behindAnObject(const Bytes& rest) {
    Bytes bytes = objectOfA;
    bytes.insert(bytes.end(), rest.begin(), rest.end());
    return bytes;
}

class Objects : public testing::TestWithParam<BodyCase> {};

TEST_P(Objects, AreSettledByWhatTheTablesHold) {
    EXPECT_EQ(outcome(withHeader(GetParam().body)), items(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Table, Objects,
    testing::Values(
        BodyCase{"classThenValues", objectOfA, {fiveOfA}},
        BodyCase{"classWithoutValues", {0x84, 1, '@', 0x84, 0x84, 1, 'A', 7, 0x85, 0x86}, {}},
        BodyCase{"chainNamesTheMostDerivedClass",
                 {0x84, 1, '@', 0x84, 0x84, 1, 'B', 2, 0x84, 0x84, 1, 'A', 7, 0x85, 0x84, 1, 'i', 5},
                 {ObjectItem{{"B", 2}, {number(5)}}}},
        BodyCase{
            "rootHasNoParent", behindAnObject({0x92, 0x84, 0x94, 0x94, 6}), {fiveOfA, DataItem{{number(6)}}}},
        BodyCase{"chainEndingInAReference",
                 behindAnObject({0x92, 0x84, 0x84, 1, 'B', 2, 0x93, 0x94, 6}),
                 {fiveOfA, ObjectItem{{"B", 2}, {number(6)}}}},
        BodyCase{"classByReference",
                 behindAnObject({0x92, 0x84, 0x93, 0x94, 6}),
                 {fiveOfA, ObjectItem{classA, {number(6)}}}},
        BodyCase{"classByLongReference",
                 behindAnObject({0x92, 0x84, 0x81, 0x93, 0x00, 0x94, 6}),
                 {fiveOfA, ObjectItem{classA, {number(6)}}}},
        BodyCase{"classByReferencePastTheTable",
                 behindAnObject({0x92, 0x84, 0xA0, 0x94, 6}),
                 {fiveOfA, DataItem{{number(6)}}}},
        BodyCase{"finishedObjectByReference", behindAnObject({0x92, 0x84, 0x92}), {fiveOfA, fiveOfA}},
        BodyCase{"finishedObjectByPlainReference",
                 {0x84, 1, 'i', 1, 0x84, 1, '@', 0x84, 0x84, 1, 'A', 7, 0x85, 0x92, 5, 0x93, 0x92},
                 {DataItem{{number(1)}}, fiveOfA, fiveOfA}},
        BodyCase{"finishedObjectEndsItsList",
                 behindAnObject({0x84, 2, '@', 'i', 0x92, 0x94, 6}),
                 {fiveOfA, fiveOfA, DataItem{{number(6)}}}},
        BodyCase{
            "finishedObjectGivesItsSlotBack",
            behindAnObject({0x92, 0x84, 0x92, 0x92, 0x84, 0x84, 1, 'B', 2, 0x85, 0x94, 6, 0x92, 0x84, 0x94}),
            {fiveOfA, fiveOfA, ObjectItem{{"B", 2}, {number(6)}}, ObjectItem{{"B", 2}, {number(6)}}}},
        BodyCase{"emptyObject", {0x84, 1, '@', 0x85}, {}},
        BodyCase{
            "valuesForASlotWithoutClass", {0x84, 1, '@', 0x85, 0x84, 1, 'i', 5}, {DataItem{{number(5)}}}},
        BodyCase{"dataByReference",
                 {0x84, 1, '@', 0x85, 0x84, 1, 'i', 5, 0x92, 0x84, 0x92},
                 {DataItem{{number(5)}}, DataItem{{number(5)}}}},
        BodyCase{"dataByReferenceBehindOtherValues",
                 {0x84, 1, '@', 0x85, 0x84, 1, 'i', 5, 0x84, 2, 'i', '@', 4, 0x92},
                 {DataItem{{number(5)}}, DataItem{{number(4), number(5)}}}},
        BodyCase{"ownSlotByReferenceIsNothing", {0x84, 1, '@', 0x84, 0x92}, {}},
        BodyCase{"referencePastTheTableIsNothing", {0x84, 1, '@', 0xFE}, {}},
        BodyCase{"objectStillWithoutValuesByReference",
                 behindAnObject({0x92, 0x84, 0x93, 0x92, 0x94, 0x94, 6}),
                 {fiveOfA, DataItem{{number(6)}}}},
        BodyCase{"valuesBehindAClassInOneList",
                 behindAnObject({0x84, 2, '@', 'i', 0x93, 6}),
                 {fiveOfA, DataItem{{classA, number(6)}}}}),
    nameOf);

// ---- Embedded data. The byte behind "*" is passed over.

class EmbeddedData : public testing::TestWithParam<BodyCase> {};

TEST_P(EmbeddedData, IsReadByATypeListOfItsOwn) {
    EXPECT_EQ(outcome(withHeader(GetParam().body)), items(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Table, EmbeddedData,
    testing::Values(
        BodyCase{"newList", {0x84, 1, '*', 0x84, 0x84, 1, 'i', 5}, {DataItem{{number(5)}}}},
        BodyCase{"referencedList",
                 {0x84, 1, 'i', 4, 0x84, 1, '*', 0x84, 0x92, 5},
                 {DataItem{{number(4)}}, DataItem{{number(5)}}}},
        BodyCase{"endIsNoListAndStays", {0x84, 2, '*', 'i', 0x84, 0x86}, {DataItem{{number(-122)}}}},
        BodyCase{"listPastTheTable", {0x84, 1, '*', 0x84, 0xA0, 0x86}, {}},
        BodyCase{"itsItemEndsTheListAround",
                 {0x84, 3, 'i', '*', 'i', 4, 0x84, 0x84, 1, 'i', 5, 0x93, 6},
                 {DataItem{{number(5)}}, DataItem{{number(6)}}}},
        BodyCase{"nothingInsideGoesOn", {0x84, 2, '*', 'i', 0x84, 0x84, 0, 6}, {DataItem{{number(6)}}}},
        BodyCase{"insideEmbeddedData",
                 {0x84, 1, '*', 0x84, 0x84, 1, '*', 0x84, 0x84, 1, 'i', 5},
                 {DataItem{{number(5)}}}},
        BodyCase{"listTakesASlotOfTheObjectTable",
                 {0x84, 1,    '*', 0x84, 0x84, 1,    'i',  1, 0x84, 1,   '@',
                  0x84, 0x84, 1,   'A',  7,    0x85, 0x93, 5, 0x94, 0x93},
                 {DataItem{{number(1)}}, fiveOfA, fiveOfA}},
        BodyCase{"listTakesItsSlotOnce",
                 {0x84, 1,   '*',  0x84, 0x84, 1,   'i', 1,    0x92, 0x84, 0x93, 2,   0x84,
                  1,    '@', 0x84, 0x84, 1,    'A', 7,   0x85, 0x93, 5,    0x94, 0x93},
                 {DataItem{{number(1)}}, DataItem{{number(2)}}, fiveOfA, fiveOfA}},
        BodyCase{"typeByReferenceIsNothing",
                 {0x84, 1, '*', 0x84, 0x84, 1, 'i', 1, 0x84, 1, '@', 0x92},
                 {DataItem{{number(1)}}}}),
    nameOf);

} // namespace
} // namespace quillbook
