#include "core/text/UTF8.h"

#include <optional>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

using Byte = unsigned char;

/// The bytes that may follow so far, by Table 3-7 of the Unicode Standard ("Well-Formed UTF-8 Byte
/// Sequences").
struct WellFormedRow {
    Byte firstLow, firstHigh;
    std::vector<std::pair<Byte, Byte>> rest;
};

const std::vector<WellFormedRow>& wellFormedRows() {
    static const std::vector<WellFormedRow> rows{
        {0x00, 0x7F, {}},
        {0xC2, 0xDF, {{0x80, 0xBF}}},
        {0xE0, 0xE0, {{0xA0, 0xBF}, {0x80, 0xBF}}},
        {0xE1, 0xEC, {{0x80, 0xBF}, {0x80, 0xBF}}},
        {0xED, 0xED, {{0x80, 0x9F}, {0x80, 0xBF}}},
        {0xEE, 0xEF, {{0x80, 0xBF}, {0x80, 0xBF}}},
        {0xF0, 0xF0, {{0x90, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}}},
        {0xF1, 0xF3, {{0x80, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}}},
        {0xF4, 0xF4, {{0x80, 0x8F}, {0x80, 0xBF}, {0x80, 0xBF}}},
    };
    return rows;
}

struct Step {
    std::size_t length; ///< Of the sequence, or of the maximal subpart that is replaced.
    bool isWellFormed;
};

Step referenceStep(std::string_view bytes) {
    const Byte first = static_cast<Byte>(bytes[0]);
    for (const WellFormedRow& row : wellFormedRows()) {
        if (first < row.firstLow || first > row.firstHigh) continue;
        std::size_t length = 1;
        for (const auto& [low, high] : row.rest) {
            if (length == bytes.size()) return {length, false};
            const Byte next = static_cast<Byte>(bytes[length]);
            if (next < low || next > high) return {length, false};
            ++length;
        }
        return {length, true};
    }
    return {1, false};
}

std::string referenceRepair(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        const Step step = referenceStep(bytes);
        text += step.isWellFormed ? bytes.substr(0, step.length) : "\xEF\xBF\xBD";
        bytes.remove_prefix(step.length);
    }
    return text;
}

bool referenceIsValid(std::string_view bytes) {
    while (!bytes.empty()) {
        const Step step = referenceStep(bytes);
        if (!step.isWellFormed) return false;
        bytes.remove_prefix(step.length);
    }
    return true;
}

struct RepairCase {
    const char* name;
    std::string bytes;
    std::string repaired;
};

class Repair : public testing::TestWithParam<RepairCase> {};

TEST_P(Repair, replacesOncePerMaximalSubpart) {
    EXPECT_EQ(repairedUTF8(GetParam().bytes), GetParam().repaired);
}

TEST_P(Repair, isNeededExactlyWhereTheBytesAreIllFormed) {
    EXPECT_EQ(isValidUTF8(GetParam().bytes), GetParam().bytes == GetParam().repaired);
}

TEST_P(Repair, agreesWithTheReference) {
    EXPECT_EQ(referenceRepair(GetParam().bytes), GetParam().repaired);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Repair,
    testing::Values(RepairCase{"empty", "", ""}, //
                    RepairCase{"ascii", "Ada Quill\n", "Ada Quill\n"},
                    RepairCase{"zeroByte", std::string("a\0b", 3), std::string("a\0b", 3)},
                    RepairCase{"everyLength", "aé€😀", "aé€😀"}, //
                    RepairCase{"lastScalar", "\U0010FFFF", "\U0010FFFF"},
                    RepairCase{"noncharacterIsWellFormed", "\uFFFF\uFDD0", "\uFFFF\uFDD0"},
                    RepairCase{"loneContinuation", "a\x80z", "a\uFFFDz"},
                    RepairCase{"twoContinuations", "\x80\xBF", "\uFFFD\uFFFD"},
                    RepairCase{"overlongOfTwo", "\xC0\xAF", "\uFFFD\uFFFD"},
                    RepairCase{"overlongOfTwoLast", "\xC1\xBF", "\uFFFD\uFFFD"},
                    RepairCase{"overlongOfThree", "\xE0\x80\xAF", "\uFFFD\uFFFD\uFFFD"},
                    RepairCase{"overlongOfThreeLast", "\xE0\x9F\xBF", "\uFFFD\uFFFD\uFFFD"},
                    RepairCase{"overlongOfFour", "\xF0\x80\x80\xAF", "\uFFFD\uFFFD\uFFFD\uFFFD"},
                    RepairCase{"surrogate", "\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
                    RepairCase{"surrogatePair", "\xED\xA0\xBD\xED\xB8\x80",
                               "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
                    RepairCase{"aboveTheLastScalar", "\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
                    RepairCase{"fiveByteForm", "\xF8\x88\x80\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
                    RepairCase{"impossibleBytes", "\xFE\xFF", "\uFFFD\uFFFD"},
                    RepairCase{"cutAtTheEndOfTwo", "a\xC3", "a\uFFFD"},
                    RepairCase{"cutAtTheEndOfThree", "a\xE2\x82", "a\uFFFD"},
                    RepairCase{"cutAtTheEndOfFour", "a\xF0\x9F\x98", "a\uFFFD"},
                    RepairCase{"cutWithin", "\xE2\x82z\xF0\x9Fz\xC3z", "\uFFFDz\uFFFDz\uFFFDz"},
                    RepairCase{"exampleOfTheStandard",
                               "a\xF1\x80\x80\xE1\x80\xC2"
                               "b\x80"
                               "c\x80\xBF"
                               "d",
                               "a\uFFFD\uFFFD\uFFFDb\uFFFDc\uFFFD\uFFFDd"},
                    RepairCase{"behindALongRunOfASCII", std::string(100, 'x') + "\xFF",
                               std::string(100, 'x') + "\uFFFD"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(UTF8, agreesWithTheReferenceForEveryPairOfBytes) {
    for (unsigned first = 0; first < 256; ++first) {
        for (unsigned second = 0; second < 256; ++second) {
            const std::string bytes{static_cast<char>(first), static_cast<char>(second)};
            ASSERT_EQ(isValidUTF8(bytes), referenceIsValid(bytes)) << first << ' ' << second;
            ASSERT_EQ(repairedUTF8(bytes), referenceRepair(bytes)) << first << ' ' << second;
        }
    }
}

TEST(UTF8, agreesWithTheReferenceForRandomBytes) {
    std::mt19937 random(20'240'501);
    // The bytes at which sequences begin and end well or ill.
    constexpr std::string_view edges =
        "a\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xEC\xED\xEE\xEF\xF0\xF1\xF3\xF4\xF5\xFF";
    for (int round = 0; round < 50'000; ++round) {
        std::string bytes(random() % 24, 'a');
        for (char& byte : bytes)
            byte = edges[random() % edges.size()];
        ASSERT_EQ(isValidUTF8(bytes), referenceIsValid(bytes));
        const std::string repaired = repairedUTF8(bytes);
        ASSERT_EQ(repaired, referenceRepair(bytes));
        ASSERT_TRUE(isValidUTF8(repaired));
    }
}

TEST(UTF8, everyScalarComesBack) {
    for (char32_t scalar = 0; scalar <= 0x10FFFF; ++scalar) {
        if (scalar >= 0xD800 && scalar <= 0xDFFF) continue;
        std::string text;
        appendScalar(text, scalar);
        ASSERT_TRUE(isValidUTF8(text));
        std::string_view rest = text;
        ASSERT_EQ(takeScalar(rest), scalar);
        ASSERT_TRUE(rest.empty());
    }
}

TEST(AppendScalar, replacesWhatIsNoScalar) {
    for (const char32_t wrong :
         {char32_t{0xD800}, char32_t{0xDFFF}, char32_t{0x110000}, char32_t{0xFFFFFFFF}}) {
        std::string text = "a";
        appendScalar(text, wrong);
        EXPECT_EQ(text, "a\uFFFD");
    }
}

TEST(TakeScalar, takesOneAfterTheOther) {
    std::string_view rest = "aé😀\xFF!";
    std::vector<char32_t> scalars;
    while (!rest.empty())
        scalars.push_back(takeScalar(rest));
    EXPECT_EQ(scalars, (std::vector<char32_t>{U'a', U'é', U'😀', 0xFFFD, U'!'}));
}

} // namespace
} // namespace quillbook
