#include "typedstream/TypeSignature.h"
#include "typedstream/TypedStreamDecoderError.h"

#include <string_view>

#include <gmock/gmock.h>

namespace quillbook::typedstream {
namespace {

TypeList parsed(std::string_view signature) {
    return parseSignature({reinterpret_cast<const std::uint8_t*>(signature.data()), signature.size()});
}

struct SignatureCase {
    const char* name;
    std::string_view signature;
    TypeList expected;
};

class Signature : public testing::TestWithParam<SignatureCase> {};

TEST_P(Signature, GivesItsTypesInOrder) {
    EXPECT_EQ(parsed(GetParam().signature), GetParam().expected);
}

const Type signedInt = PlainType::signedInt;
const Type unsignedInt = PlainType::unsignedInt;

INSTANTIATE_TEST_SUITE_P(
    Table, Signature,
    testing::Values(SignatureCase{"empty", "", {}}, SignatureCase{"text", "+", {PlainType::utf8String}},
                    SignatureCase{"embeddedData", "*", {PlainType::embeddedData}},
                    SignatureCase{"object", "@", {PlainType::object}},
                    SignatureCase{"signedIntegers", "cilqs", TypeList(5, signedInt)},
                    SignatureCase{"unsignedIntegers", "CILQS", TypeList(5, unsignedInt)},
                    SignatureCase{"decimals", "fd", {PlainType::floatNumber, PlainType::doubleNumber}},
                    SignatureCase{"mixed", "iI", {signedInt, unsignedInt}},
                    SignatureCase{"unknown", "#z", {UnknownType{'#'}, UnknownType{'z'}}},
                    SignatureCase{"array", "[5c]", {ArrayType{5}}},
                    SignatureCase{"arrayOfOne", "[1", {ArrayType{1}}},
                    SignatureCase{"arrayEndsAtTheFirstNonDigit", "[12+34", {ArrayType{12}}},
                    SignatureCase{"leadingZeros", "[007c]", {ArrayType{7}}},
                    SignatureCase{"longestArray", "[9223372036854775807c]", {ArrayType{INT64_MAX}}},
                    SignatureCase{"arrayBehindAnotherType",
                                  "i[5]",
                                  {signedInt, UnknownType{'['}, UnknownType{'5'}, UnknownType{']'}}}),
    [](const auto& entry) { return std::string(entry.param.name); });

struct BadArrayCase {
    const char* name;
    std::string_view signature;
};

class BadArray : public testing::TestWithParam<BadArrayCase> {};

TEST_P(BadArray, IsRefused) {
    try {
        parsed(GetParam().signature);
        FAIL() << "nothing was thrown";
    } catch (const TypedStreamDecoderError& error) {
        EXPECT_EQ(error, TypedStreamDecoderError(TypedStreamDecoderError::InvalidArray()));
    }
}

INSTANTIATE_TEST_SUITE_P(Table, BadArray,
                         testing::Values(BadArrayCase{"bracketAlone", "["}, BadArrayCase{"zero", "[0]"},
                                         BadArrayCase{"noDigits", "[c]"}, BadArrayCase{"negative", "[-1c]"},
                                         BadArrayCase{"negativeZero", "[-0c]"}, BadArrayCase{"plus", "[+1c]"},
                                         BadArrayCase{"blank", "[ 1c]"},
                                         BadArrayCase{"tooLarge", "[9223372036854775808c]"}),
                         [](const auto& entry) { return std::string(entry.param.name); });

} // namespace
} // namespace quillbook::typedstream
