#include "core/text/UnicodeCategories.h"

#include <gtest/gtest.h>

namespace quillbook {
namespace {

struct CategoryCase {
    const char* name;
    char32_t scalar;
    bool control, controlOrFormat, alphanumeric, number, white;
};

class Categories : public testing::TestWithParam<CategoryCase> {};

TEST_P(Categories, areTheScalars) {
    const CategoryCase& expected = GetParam();
    EXPECT_EQ(isControl(expected.scalar), expected.control);
    EXPECT_EQ(isControlOrFormat(expected.scalar), expected.controlOrFormat);
    EXPECT_EQ(isAlphanumeric(expected.scalar), expected.alphanumeric);
    EXPECT_EQ(isNumber(expected.scalar), expected.number);
    EXPECT_EQ(isWhitespaceOrNewline(expected.scalar), expected.white);
}

constexpr bool yes = true;
constexpr bool no = false;

INSTANTIATE_TEST_SUITE_P(Table, Categories,
                         testing::Values(CategoryCase{"zero", 0, yes, yes, no, no, no},
                                         CategoryCase{"tab", 0x09, yes, yes, no, no, yes},
                                         CategoryCase{"lineFeed", 0x0A, yes, yes, no, no, yes},
                                         CategoryCase{"carriageReturn", 0x0D, yes, yes, no, no, yes},
                                         CategoryCase{"shiftOut", 0x0E, yes, yes, no, no, no},
                                         CategoryCase{"escape", 0x1B, yes, yes, no, no, no},
                                         CategoryCase{"blank", ' ', no, no, no, no, yes},
                                         CategoryCase{"delete", 0x7F, yes, yes, no, no, no},
                                         CategoryCase{"nextLine", 0x85, yes, yes, no, no, yes},
                                         CategoryCase{"noBreakSpace", 0xA0, no, no, no, no, yes},
                                         CategoryCase{"softHyphen", 0xAD, no, yes, no, no, no},
                                         CategoryCase{"digit", '7', no, no, yes, yes, no},
                                         CategoryCase{"arabicDigit", 0x0667, no, no, yes, yes, no},
                                         CategoryCase{"romanNumeral", 0x2167, no, no, yes, yes, no},
                                         CategoryCase{"vulgarFraction", 0xBD, no, no, yes, yes, no},
                                         CategoryCase{"letter", 'q', no, no, yes, no, no},
                                         CategoryCase{"ideograph", 0x4E94, no, no, yes, no, no},
                                         CategoryCase{"combiningMark", 0x0301, no, no, yes, no, no},
                                         CategoryCase{"underscore", '_', no, no, no, no, no},
                                         CategoryCase{"slash", '/', no, no, no, no, no},
                                         CategoryCase{"emoji", 0x1F600, no, no, no, no, no},
                                         CategoryCase{"emSpace", 0x2003, no, no, no, no, yes},
                                         CategoryCase{"zeroWidthJoiner", 0x200D, no, yes, no, no, no},
                                         CategoryCase{"rightToLeftOverride", 0x202E, no, yes, no, no, no},
                                         CategoryCase{"lineSeparator", 0x2028, no, no, no, no, yes},
                                         CategoryCase{"ideographicSpace", 0x3000, no, no, no, no, yes},
                                         CategoryCase{"byteOrderMark", 0xFEFF, no, yes, no, no, no},
                                         CategoryCase{"languageTag", 0xE0067, no, yes, no, no, no},
                                         CategoryCase{"replacement", 0xFFFD, no, no, no, no, no},
                                         CategoryCase{"unassigned", 0x0378, no, no, no, no, no},
                                         CategoryCase{"lastScalar", 0x10FFFF, no, no, no, no, no},
                                         CategoryCase{"noScalar", 0x110000, no, no, no, no, no}),
                         [](const auto& test) { return std::string(test.param.name); });

struct TextCase {
    const char* name;
    std::string text;
    std::string result;
};

const auto nameOf = [](const auto& test) { return std::string(test.param.name); };

class TrimmedWhitespace : public testing::TestWithParam<TextCase> {};

TEST_P(TrimmedWhitespace, isAsTold) {
    EXPECT_EQ(trimmedWhitespace(GetParam().text), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Table, TrimmedWhitespace,
                         testing::Values(TextCase{"empty", "", ""}, //
                                         TextCase{"blanksAlone", " \t\r\n\u2003", ""},
                                         TextCase{"nothingToTrim", "Ada", "Ada"},
                                         TextCase{"bothEnds", "\n Ada Quill\t ", "Ada Quill"},
                                         TextCase{"wideBlanks", "\u3000\u00A0Ada\u2028", "Ada"},
                                         TextCase{"zeroWidthIsKept", "\u200DAda\uFEFF", "\u200DAda\uFEFF"},
                                         TextCase{"invalidByteIsKept", " \xFF ", "\xFF"},
                                         TextCase{"wordsBeyondASCII", " ß é ", "ß é"}),
                         nameOf);

TEST(TrimmedWhitespace, isAPartOfTheText) {
    const std::string text = "  Ada ";
    EXPECT_EQ(trimmedWhitespace(text).data(), text.data() + 2);
}

class TrimmedBlanksAndPoints : public testing::TestWithParam<TextCase> {};

TEST_P(TrimmedBlanksAndPoints, isAsTold) {
    EXPECT_EQ(trimmedBlanksAndPoints(GetParam().text), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Table, TrimmedBlanksAndPoints,
                         testing::Values(TextCase{"empty", "", ""}, //
                                         TextCase{"blanksAndPointsAlone", " .. . ", ""},
                                         TextCase{"hiddenName", ".profile", "profile"},
                                         TextCase{"pointsWithin", " a.b c. ", "a.b c"},
                                         TextCase{"otherWhiteSpaceIsKept", "\ta\n", "\ta\n"},
                                         TextCase{"single", ".", ""}),
                         nameOf);

class Lowercased : public testing::TestWithParam<TextCase> {};

TEST_P(Lowercased, isAsTold) {
    EXPECT_EQ(lowercased(GetParam().text), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Table, Lowercased,
                         testing::Values(TextCase{"empty", "", ""}, //
                                         TextCase{"ascii", "Ada@QUILL.Example", "ada@quill.example"},
                                         TextCase{"umlauts", "ÄÖÜẞ", "äöüß"}, //
                                         TextCase{"greekWithFinalSigma", "ΟΔΟΣ", "οδος"},
                                         TextCase{"cyrillic", "АДА", "ада"},
                                         TextCase{"noTurkishRules", "TITLE", "title"},
                                         TextCase{"dottedCapitalI", "İ", "i\u0307"},
                                         TextCase{"noLetters", "123 😀", "123 😀"}),
                         nameOf);

} // namespace
} // namespace quillbook
