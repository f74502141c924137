#include "typedstream/TypedStreamDecoderError.h"

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using Error = TypedStreamDecoderError;

struct WordsCase {
    const char* name;
    Error::Reason reason;
    std::string expected;
};

class Words : public testing::TestWithParam<WordsCase> {};

TEST_P(Words, SayTheReason) {
    EXPECT_EQ(Error(GetParam().reason).description(), GetParam().expected);
}

TEST_P(Words, AreWhatTheStandardInterfaceSays) {
    const Error error(GetParam().reason);
    EXPECT_EQ(static_cast<const std::exception&>(error).what(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Words,
    testing::Values(
        WordsCase{"outOfBounds", Error::OutOfBounds{0x1A, 0xFF}, "Index 1a is outside of range ff!"},
        WordsCase{"outOfBoundsAtZero", Error::OutOfBounds{0, 0}, "Index 0 is outside of range 0!"},
        WordsCase{"sliceError", Error::SliceError{{"Slice", 3}},
                  "Unable to slice source stream: Slice (code 3)"},
        WordsCase{"stringParseError", Error::StringParseError{{"Invalid UTF-8", 0}},
                  "Failed to parse string: Invalid UTF-8 (code 0)"},
        WordsCase{"invalidPointer", Error::InvalidPointer{0x8F}, "Failed to parse pointer: 8f"},
        WordsCase{"invalidHeader", Error::InvalidHeader(), "Invalid typedstream header!"},
        WordsCase{"invalidArray", Error::InvalidArray(), "Failed to parse array data"}),
    [](const auto& entry) { return std::string(entry.param.name); });

} // namespace
} // namespace quillbook
