#include "shell/adapter/Initials.h"

#include <gtest/gtest.h>

namespace quillbook {
namespace {

struct InitialsCase {
    const char* name;
    std::string of;
    std::string expected;

    friend std::ostream& operator<<(std::ostream& out, const InitialsCase& each) { return out << each.name; }
};

class Initials : public testing::TestWithParam<InitialsCase> {};

TEST_P(Initials, areTheFirstCharactersOfTheFirstAndTheLastWord) {
    EXPECT_EQ(initials(GetParam().of), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Initials,
    testing::Values(
        InitialsCase{"nothing", "", ""}, InitialsCase{"spacesAlone", "   ", ""},
        InitialsCase{"oneWord", "Ada", "A"}, InitialsCase{"twoWords", "Ada Quill", "AQ"},
        InitialsCase{"manyWords", "Ada Maria van der Quill", "AQ"},
        InitialsCase{"manySpaces", "  Ada   Quill  ", "AQ"}, InitialsCase{"smallLetters", "ada quill", "AQ"},
        InitialsCase{"greek", "ελένη παπαδοπούλου", "ΕΠ"}, InitialsCase{"cyrillic", "Анна Петрова", "АП"},
        InitialsCase{"han", "山田太郎", "山"}, InitialsCase{"hangul", "김 지수", "김지"},
        InitialsCase{"arabic", "ليلى حسن", "لح"}, InitialsCase{"hebrew", "נועה לוי", "נל"},
        InitialsCase{"devanagariSyllable", "क्षमा नाईक", "क्षना"},
        InitialsCase{"beyondTheBasicPlane", "\U00010428\U00010429 quill", "\U00010400Q"},
        InitialsCase{"precomposed", "Émile Özil", "ÉÖ"},
        InitialsCase{"combiningMark", "e\u0301mile o\u0308zil", "E\u0301O\u0308"},
        InitialsCase{"email", "ada@rivertown.example", ""},
        InitialsCase{"nameAndEmail", "Ada <ada@rivertown.example>", ""},
        InitialsCase{"phoneNumber", "+1 (212) 555-0199", ""}, InitialsCase{"shortCode", "24273", ""},
        InitialsCase{"emojiAlone", "🦊", ""}, InitialsCase{"emojiFirst", "🦊 Ada", "A"},
        InitialsCase{"emojiLast", "Ada 🦊", "A"}, InitialsCase{"family", "👨‍👩‍👧 Quill", "Q"},
        InitialsCase{"wordInBrackets", "Ada (work) Quill", "AQ"},
        InitialsCase{"bracketLast", "Ada Quill (work)", "AQ"}, InitialsCase{"digitsBehind", "Ada 2", "A"},
        InitialsCase{"combiningMarkAlone", "\u0301 Ada", "A"},
        InitialsCase{"replacedBytes", "\xFF\xFE Ada \xC3", "A"},
        InitialsCase{"halfACharacter", "\xE5\xB1 Quill", "Q"},
        InitialsCase{"surrogateInUTF8", "\xED\xA0\x80 Quill", "Q"},
        InitialsCase{"zeroByte", std::string("\0 Ada", 5), "A"},
        InitialsCase{"rightToLeftOverride", "\u202E Ada", "A"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(InitialsOfHugeNames, takeTheFirstAndTheLastOfManyWords) {
    std::string name = "Ada";
    while (name.size() < 1'000'000)
        name += " b";
    EXPECT_EQ(initials(name + " quill"), "AQ");
}

TEST(InitialsOfHugeNames, takeOneCharacterOfAWordWithoutEnd) {
    EXPECT_EQ(initials(std::string(1'000'000, 'a')), "A");
}

TEST(InitialsOfHugeNames, stayShortUnderAPileOfMarks) {
    std::string name = "a";
    while (name.size() < 1'000'000)
        name += "\u0301";
    EXPECT_LE(initials(name).size(), 64U);
    EXPECT_EQ(initials(name).front(), 'A');
}

TEST(InitialsOfHugeNames, areNoneWhereNoWordBeginsWithALetter) {
    std::string name;
    while (name.size() < 1'000'000)
        name += "1 ";
    EXPECT_EQ(initials(name), "");
}

} // namespace
} // namespace quillbook
