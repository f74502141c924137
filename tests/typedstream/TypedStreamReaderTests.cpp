#include "typedstream/TypedStreamDecoderError.h"
#include "typedstream/TypedStreamReader.h"

#include <variant>
#include <vector>

#include <gmock/gmock.h>

namespace quillbook::typedstream {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Error = TypedStreamDecoderError;

/// What a reading operation gave, and how many bytes it took; or why it failed.
template <class Number>
struct Outcome {
    std::variant<Number, Error::Reason> result;
    std::uint64_t taken = 0;

    bool operator==(const Outcome&) const = default;
};

template <class Number, class Operation>
Outcome<Number> outcomeOf(const Bytes& bytes, Operation operation) {
    TypedStreamReader reader(bytes);
    try {
        const Number number = operation(reader);
        return {number, reader.index()};
    } catch (const Error& error) {
        return {error.reason(), 0};
    }
}

template <class Number>
Outcome<Number> outOfBounds(std::uint64_t index, std::uint64_t length) {
    return {Error::Reason(Error::OutOfBounds{index, length}), 0};
}

template <class Number>
struct NumberCase {
    const char* name;
    Bytes bytes;
    Outcome<Number> expected;
};

const auto nameOf = [](const auto& entry) { return std::string(entry.param.name); };

// ---- Integers

class ReadUnsignedInt : public testing::TestWithParam<NumberCase<std::uint64_t>> {};

TEST_P(ReadUnsignedInt, GivesTheNumberOrFails) {
    const auto read = [](TypedStreamReader& reader) { return reader.readUnsignedInt(); };
    EXPECT_EQ(outcomeOf<std::uint64_t>(GetParam().bytes, read), GetParam().expected);
}

using Unsigned = NumberCase<std::uint64_t>;
INSTANTIATE_TEST_SUITE_P(
    Table, ReadUnsignedInt,
    testing::Values(Unsigned{"oneByte", {0x05}, {5U, 1}}, Unsigned{"largestByte", {0xFF}, {255U, 1}},
                    Unsigned{"tagsAreValuesToo", {0x86}, {0x86U, 1}},
                    Unsigned{"twoBytesLittleEndian", {0x81, 0x34, 0x12}, {0x1234U, 3}},
                    Unsigned{"twoBytesAreUnsigned", {0x81, 0xFF, 0xFF}, {0xFFFFU, 3}},
                    Unsigned{"fourBytesLittleEndian", {0x82, 0x78, 0x56, 0x34, 0x12}, {0x12345678U, 5}},
                    Unsigned{"fourBytesAreUnsigned", {0x82, 0xFF, 0xFF, 0xFF, 0xFF}, {0xFFFFFFFFU, 5}},
                    Unsigned{"nothing", {}, outOfBounds<std::uint64_t>(0, 0)},
                    Unsigned{"twoBytesCutShort", {0x81, 0x34}, outOfBounds<std::uint64_t>(3, 2)},
                    Unsigned{"fourBytesCutShort", {0x82, 1, 2, 3}, outOfBounds<std::uint64_t>(5, 4)}),
    nameOf);

class ReadSignedInt : public testing::TestWithParam<NumberCase<std::int64_t>> {};

TEST_P(ReadSignedInt, GivesTheNumberOrFails) {
    const auto read = [](TypedStreamReader& reader) { return reader.readSignedInt(); };
    EXPECT_EQ(outcomeOf<std::int64_t>(GetParam().bytes, read), GetParam().expected);
}

using Signed = NumberCase<std::int64_t>;
INSTANTIATE_TEST_SUITE_P(
    Table, ReadSignedInt,
    testing::Values(Signed{"oneByte", {0x05}, {5, 1}}, Signed{"largestSmallNumber", {0x7F}, {127, 1}},
                    Signed{"lowestTagAsANumber", {0x83}, {-125, 1}},
                    Signed{"firstReferenceByte", {0x92}, {-110, 1}},
                    Signed{"referenceByteBeforeEnd", {0x93, 0x86}, {-109, 1}},
                    Signed{"minusOneBeforeEnd", {0xFF, 0x86}, {-1, 1}},
                    Signed{"referenceByteBeforeANumber", {0x93, 0x05}, {5, 2}},
                    Signed{"runOfReferenceBytes", {0x93, 0x94, 0xFF, 0x05}, {5, 4}},
                    Signed{"runOfReferenceBytesThenEnd", {0x93, 0x94, 0x86}, {-108, 2}},
                    Signed{"runOfReferenceBytesThenTwoBytes", {0x93, 0x81, 0x34, 0x12}, {0x1234, 4}},
                    Signed{"twoBytesLittleEndian", {0x81, 0x34, 0x12}, {0x1234, 3}},
                    Signed{"twoBytesSignExtended", {0x81, 0xFE, 0xFF}, {-2, 3}},
                    Signed{"fourBytesSignExtended", {0x82, 0xFD, 0xFF, 0xFF, 0xFF}, {-3, 5}},
                    Signed{"nothing", {}, outOfBounds<std::int64_t>(0, 0)},
                    Signed{"referenceByteAtTheEnd", {0x93}, outOfBounds<std::int64_t>(1, 1)},
                    Signed{"twoBytesCutShort", {0x81, 0x34}, outOfBounds<std::int64_t>(3, 2)},
                    Signed{"fourBytesCutShort", {0x82, 1, 2}, outOfBounds<std::int64_t>(5, 3)}),
    nameOf);

// ---- Decimals

class ReadFloat : public testing::TestWithParam<NumberCase<float>> {};

TEST_P(ReadFloat, GivesTheNumberOrFails) {
    const auto read = [](TypedStreamReader& reader) { return reader.readFloat(); };
    EXPECT_EQ(outcomeOf<float>(GetParam().bytes, read), GetParam().expected);
}

using Float = NumberCase<float>;
INSTANTIATE_TEST_SUITE_P(
    Table, ReadFloat,
    testing::Values(Float{"decimal", {0x83, 0x00, 0x00, 0xC0, 0x3F}, {1.5F, 5}},
                    Float{"twoByteInteger", {0x81, 0x10, 0x00}, {16.0F, 3}},
                    Float{"fourByteInteger", {0x82, 0xFF, 0xFF, 0xFF, 0xFF}, {-1.0F, 5}},
                    Float{"otherByteIsSkipped", {0x10, 0x07}, {7.0F, 2}},
                    Float{"nothing", {}, outOfBounds<float>(0, 0)},
                    Float{"otherByteAlone", {0x10}, outOfBounds<float>(1, 1)},
                    Float{"decimalCutShort", {0x83, 0, 0, 0xC0}, outOfBounds<float>(5, 4)}),
    nameOf);

class ReadDouble : public testing::TestWithParam<NumberCase<double>> {};

TEST_P(ReadDouble, GivesTheNumberOrFails) {
    const auto read = [](TypedStreamReader& reader) { return reader.readDouble(); };
    EXPECT_EQ(outcomeOf<double>(GetParam().bytes, read), GetParam().expected);
}

using Double = NumberCase<double>;
INSTANTIATE_TEST_SUITE_P(
    Table, ReadDouble,
    testing::Values(Double{"decimal", {0x83, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F}, {1.5, 9}},
                    Double{"twoByteInteger", {0x81, 0x10, 0x00}, {16.0, 3}},
                    Double{"otherByteIsSkipped", {0x10, 0x07}, {7.0, 2}},
                    Double{"decimalCutShort", {0x83, 0, 0, 0, 0}, outOfBounds<double>(9, 5)}),
    nameOf);

// ---- Bytes and text

TEST(ReadBytes, GivesTheBytesAndMovesPastThem) {
    const Bytes bytes = {1, 2, 3, 4};
    TypedStreamReader reader(bytes);
    const auto part = reader.readBytes(3);
    EXPECT_EQ(Bytes(part.begin(), part.end()), (Bytes{1, 2, 3}));
    EXPECT_EQ(reader.index(), 3U);
}

TEST(ReadBytes, FailsWhenTheCountReachesPastTheEnd) {
    const Bytes bytes = {1, 2, 3, 4};
    TypedStreamReader reader(bytes);
    reader.readBytes(1);
    EXPECT_THROW(reader.readBytes(4), Error);
    EXPECT_THROW(reader.readBytes(INT64_MAX), Error);
    EXPECT_EQ(reader.index(), 1U);
}

TEST(ReadString, KeepsEveryScalar) {
    const std::string text = "\xEF\xBB\xBF"
                             "Zo\xC3\xAB \xF0\x9F\x8C\xB7 \xEF\xBF\xBC";
    const Bytes bytes(text.begin(), text.end());
    TypedStreamReader reader(bytes);
    EXPECT_EQ(reader.readString(bytes.size()), text);
}

struct BadTextCase {
    const char* name;
    Bytes bytes;
};

class BadText : public testing::TestWithParam<BadTextCase> {};

TEST_P(BadText, IsAStringParseError) {
    TypedStreamReader reader(GetParam().bytes);
    try {
        reader.readString(GetParam().bytes.size());
        FAIL() << "nothing was thrown";
    } catch (const Error& error) {
        EXPECT_EQ(error, Error(Error::StringParseError{{"Invalid UTF-8", 0}}));
    }
}

INSTANTIATE_TEST_SUITE_P(Table, BadText,
                         testing::Values(BadTextCase{"loneContinuation", {0x80}},
                                         BadTextCase{"cutShort", {'a', 0xE2, 0x82}},
                                         BadTextCase{"overlong", {0xC0, 0xAF}},
                                         BadTextCase{"surrogate", {0xED, 0xA0, 0x80}},
                                         BadTextCase{"aboveTheLastScalar", {0xF4, 0x90, 0x80, 0x80}}),
                         nameOf);

// ---- References

class ReadPointer : public testing::TestWithParam<NumberCase<std::size_t>> {};

TEST_P(ReadPointer, GivesTheIndexOrFails) {
    const auto read = [](TypedStreamReader& reader) { return reader.readPointer(); };
    EXPECT_EQ(outcomeOf<std::size_t>(GetParam().bytes, read), GetParam().expected);
}

Outcome<std::size_t> invalidPointer(std::uint8_t byte) {
    return {Error::Reason(Error::InvalidPointer{byte}), 0};
}

using Pointer = NumberCase<std::size_t>;
INSTANTIATE_TEST_SUITE_P(Table, ReadPointer,
                         testing::Values(Pointer{"lowestReference", {0x92}, {std::size_t{0}, 1}},
                                         Pointer{"secondReference", {0x93}, {std::size_t{1}, 1}},
                                         Pointer{"highestReference", {0xFF}, {std::size_t{109}, 1}},
                                         Pointer{"zeroWrapsRound", {0x00}, {std::size_t{110}, 1}},
                                         Pointer{"highestThatWrapsRound", {0x7F}, {std::size_t{237}, 1}},
                                         Pointer{"justBelowTheReferences", {0x91}, invalidPointer(0x91)},
                                         Pointer{"lowestInvalid", {0x80}, invalidPointer(0x80)},
                                         Pointer{"start", {0x84}, invalidPointer(0x84)},
                                         Pointer{"nothing", {}, outOfBounds<std::size_t>(0, 0)}),
                         nameOf);

} // namespace
} // namespace quillbook::typedstream
