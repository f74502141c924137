#include "core/text/GraphemeClusters.h"
#include "core/text/UTF8.h"
#include "core/text/UnicodeCategories.h"
#include "export/AttachmentNames.h"

#include <chrono>
#include <random>
#include <set>
#include <vector>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

constexpr const char* fallback = "Attachment-at_12";

std::string repeated(std::string_view piece, std::size_t count) {
    std::string text;
    while (count-- > 0)
        text += piece;
    return text;
}

struct NameCase {
    const char* name;
    std::string wanted;
    std::string expected;
};

class AttachmentName : public testing::TestWithParam<NameCase> {};

TEST_P(AttachmentName, isAsExpected) {
    EXPECT_EQ(AttachmentNames().take(GetParam().wanted, fallback), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, AttachmentName,
    testing::Values(
        NameCase{"plain", "IMG_0001.HEIC", "IMG_0001.HEIC"}, NameCase{"blankInside", "a b.jpg", "a b.jpg"},
        NameCase{"climbing", "../../etc/passwd", "passwd"},
        NameCase{"backslashes", "C:\\pics\\a.jpg", "a.jpg"}, NameCase{"mixedSlashes", "x/y\\z.png", "z.png"},
        NameCase{"slashAtTheEnd", "pics/holiday/", "holiday"},
        NameCase{"manySlashesAtTheEnd", "pics///", "pics"}, NameCase{"backslashAtTheEnd", "pics\\", "pics"},
        NameCase{"colon", "a:b.jpg", "a-b.jpg"}, NameCase{"tab", "a\tb.jpg", "a-b.jpg"},
        NameCase{"lineFeed", "a\nb.jpg", "a-b.jpg"}, NameCase{"nul", std::string("a\0b.jpg", 7), "a-b.jpg"},
        NameCase{"c1Control", "a\u0085b.jpg", "a-b.jpg"},
        NameCase{"rightToLeftOverride", "a\u202Egpj.exe", "a-gpj.exe"},
        NameCase{"zeroWidthJoiner", "\U0001F468\u200D\U0001F469.png", "\U0001F468-\U0001F469.png"},
        NameCase{"onlyControls", "\t\t", "--"}, NameCase{"threePoints", "...", fallback},
        NameCase{"pointBetweenBlanks", " . ", fallback}, NameCase{"empty", "", fallback},
        NameCase{"onlySlash", "/", fallback}, NameCase{"twoPoints", "..", fallback},
        NameCase{"climbOnly", "a/..", fallback}, NameCase{"trimmedEnds", " ..a.jpg. ", "a.jpg"},
        NameCase{"hiddenName", ".profile", "profile"},
        NameCase{"noBreakSpaceIsNotTrimmed", "\u00A0a", "\u00A0a"},
        NameCase{"noExtension", "README", "README"}, NameCase{"twoExtensions", "a.tar.gz", "a.tar.gz"},
        NameCase{"accents", "Grüße.pdf", "Grüße.pdf"}, NameCase{"illFormed", "a\xFF.jpg", "a\uFFFD.jpg"},
        NameCase{"longStem", repeated("s", 300) + ".jpeg", repeated("s", 195) + ".jpeg"},
        NameCase{"exactlyFull", repeated("s", 195) + ".jpeg", repeated("s", 195) + ".jpeg"},
        NameCase{"longWithoutExtension", repeated("s", 300), repeated("s", 200)},
        NameCase{"wideCharacterAtTheLimit", repeated("s", 194) + "é.jpeg", repeated("s", 194) + ".jpeg"},
        NameCase{"flagAtTheLimit", repeated("s", 190) + "\U0001F1E9\U0001F1EA.jpeg",
                 repeated("s", 190) + ".jpeg"},
        NameCase{"flagThatFits", repeated("s", 187) + "\U0001F1E9\U0001F1EA.jpeg",
                 repeated("s", 187) + "\U0001F1E9\U0001F1EA.jpeg"},
        NameCase{"combiningMarkAtTheLimit", repeated("s", 194) + "e\u0301.jpeg",
                 repeated("s", 194) + ".jpeg"},
        NameCase{"extensionOf198Bytes", "ab." + repeated("x", 198), "a." + repeated("x", 198)},
        NameCase{"extensionOf199Bytes", "a." + repeated("x", 199),
                 std::string(fallback) + '.' + repeated("x", 199)},
        NameCase{"extensionOf217Bytes", "a." + repeated("x", 217),
                 std::string(fallback) + '.' + repeated("x", 217)},
        NameCase{"extensionThatNoFileSystemTakesWithACounter", "a." + repeated("x", 218), fallback},
        NameCase{"firstCharacterTooLong", "\U0001F1E9\U0001F1EA." + repeated("x", 194),
                 std::string(fallback) + '.' + repeated("x", 194)}),
    [](const auto& tested) { return std::string(tested.param.name); });

struct FallbackCase {
    const char* name;
    std::string fallback;
    std::string expected;
};

class AttachmentFallback : public testing::TestWithParam<FallbackCase> {};

TEST_P(AttachmentFallback, isAsExpected) {
    EXPECT_EQ(AttachmentNames().take("", GetParam().fallback), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, AttachmentFallback,
    testing::Values(
        FallbackCase{"keepsItsSlash", "Attachment-a/b", "Attachment-a/b"},
        FallbackCase{"keepsItsSlashBeforeAnExtension", "Attachment-a/b.jpg", "Attachment-a/b.jpg"},
        FallbackCase{"keepsItsSlashBehindAPoint", "Attachment-a.b/c", "Attachment-a.b/c"},
        FallbackCase{"keepsItsColon", "Attachment-a:b", "Attachment-a:b"},
        FallbackCase{"keepsItsPointAtTheEnd", "Attachment-a.", "Attachment-a."},
        FallbackCase{"isShortened", "Attachment-" + repeated("7", 300), "Attachment-" + repeated("7", 189)},
        FallbackCase{"isRepaired", "Attachment-\xC3", "Attachment-\uFFFD"}),
    [](const auto& tested) { return std::string(tested.param.name); });

struct RowCase {
    const char* name;
    std::vector<std::string> wanted;
    std::vector<std::string> expected;
};

class AttachmentNameRow : public testing::TestWithParam<RowCase> {};

TEST_P(AttachmentNameRow, isFreeOfCollisions) {
    AttachmentNames names;
    std::vector<std::string> taken;
    for (const std::string& wanted : GetParam().wanted)
        taken.push_back(names.take(wanted, fallback));
    EXPECT_EQ(taken, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, AttachmentNameRow,
    testing::Values(
        RowCase{"threePhotos",
                {"photo.jpg", "photo.jpg", "photo.jpg"},
                {"photo.jpg", "photo-2.jpg", "photo-3.jpg"}},
        RowCase{"letterCase", {"IMG.JPG", "img.jpg", "Img.jpg"}, {"IMG.JPG", "img-2.jpg", "Img-3.jpg"}},
        RowCase{"nonASCIILetterCase", {"ÄRGER.jpg", "ärger.jpg"}, {"ÄRGER.jpg", "ärger-2.jpg"}},
        RowCase{"suffixedNameComesLater",
                {"photo.jpg", "photo.jpg", "photo-2.jpg"},
                {"photo.jpg", "photo-2.jpg", "photo-2-2.jpg"}},
        RowCase{"suffixedNameCameFirst",
                {"photo-2.jpg", "photo.jpg", "photo.jpg", "photo.jpg"},
                {"photo-2.jpg", "photo.jpg", "photo-3.jpg", "photo-4.jpg"}},
        RowCase{"withoutExtension", {"note", "note"}, {"note", "note-2"}},
        RowCase{"sameStemOtherExtension", {"a.jpg", "a.png", "a.jpg"}, {"a.jpg", "a.png", "a-2.jpg"}},
        RowCase{"fallbacks", {"", ".."}, {fallback, std::string(fallback) + "-2"}},
        RowCase{"shortenedToTheSame",
                {repeated("s", 250) + ".jpeg", repeated("s", 260) + ".jpeg"},
                {repeated("s", 195) + ".jpeg", repeated("s", 195) + "-2.jpeg"}}),
    [](const auto& tested) { return std::string(tested.param.name); });

/// The rule in its plainest form: for each name every number from 2 on is tried.
class PlainNames {
public:
    std::string take(const std::string& stem, const std::string& suffix) {
        std::string candidate = stem + suffix;
        for (int number = 2; !usedNames_.insert(lowercased(candidate)).second; ++number) {
            candidate = stem + '-' + std::to_string(number) + suffix;
        }
        return candidate;
    }

private:
    std::set<std::string> usedNames_;
};

TEST(AttachmentNames, giveWhatThePlainRuleGives) {
    const std::vector<std::string> stems = {"a",  "A",  "a-2",  "A-2",   "a-3",      "a-2-2", "Σ",
                                            "ς",  "σ",  "ΟΔΟΣ", "οδος",  "İ",        "i̇",     "a.",
                                            "a-", "-2", "2",    "photo", "photo-10", "a.b",   "a.-2"};
    const std::vector<std::string> suffixes = {"", ".jpg", ".JPG", ".-2", ".b", ".2", ".σ", ".Σ"};
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        AttachmentNames names;
        PlainNames plain;
        for (int step = 0; step < 150; ++step) {
            const std::string& suffix = suffixes[random() % suffixes.size()];
            std::string stem = stems[random() % stems.size()];
            // Without an extension of its own, a stem with a point would be split at that.
            if (suffix.empty() && stem.find('.') != std::string::npos) stem = "plain";
            ASSERT_EQ(names.take(stem + suffix, "Attachment-1"), plain.take(stem, suffix))
                << "round " << round;
        }
    }
}

TEST(AttachmentNames, countApartWhereAPointEndsTheStemAndWhereItBeginsTheExtension) {
    AttachmentNames names;
    for (const char* expected : {"Attachment-x-2.", "Attachment-x-2.-2", "Attachment-x-2.-3"}) {
        EXPECT_EQ(names.take("", "Attachment-x-2."), expected);
    }
    for (const char* expected : {"Attachment-x.-2", "Attachment-x-3.-2"}) {
        EXPECT_EQ(names.take("Attachment-x.-2", fallback), expected);
    }
}

TEST(AttachmentNames, areFoundAtOnceHoweverOftenOneNameIsWanted) {
    AttachmentNames names;
    const auto start = std::chrono::steady_clock::now();
    std::string last;
    for (int count = 0; count < 50'000; ++count)
        last = names.take(count % 2 == 0 ? "photo.jpg" : "PHOTO.JPG", fallback);
    EXPECT_EQ(last, "PHOTO-50000.JPG");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

struct TitleCase {
    const char* name;
    std::string title;
    std::string expected;
};

class FolderTitle : public testing::TestWithParam<TitleCase> {};

TEST_P(FolderTitle, isAsExpected) {
    EXPECT_EQ(safeFolderTitle(GetParam().title), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FolderTitle,
    testing::Values(
        TitleCase{"plain", "Zoë & Ana", "Zoë & Ana"}, TitleCase{"slashAndColon", "a/b:c", "a-b-c"},
        TitleCase{"backslashStays", "a\\b", "a\\b"}, TitleCase{"blanksAndPoints", " . .. ", "Conversation"},
        TitleCase{"empty", "", "Conversation"}, TitleCase{"onePoint", ".", "Conversation"},
        TitleCase{"twoPoints", "..", "Conversation"}, TitleCase{"trimmedEnds", " .Mum. ", "Mum"},
        TitleCase{"control", "a\u0007b", "a-b"}, TitleCase{"format", "a\u200Fb", "a-b"},
        TitleCase{"onlySlashes", "//", "--"}, TitleCase{"longASCII", repeated("t", 300), repeated("t", 200)},
        TitleCase{"within", repeated("t", 200), repeated("t", 200)},
        TitleCase{"wideCharacterAtTheLimit", repeated("t", 199) + "é", repeated("t", 199)},
        TitleCase{"wideCharacterThatFits", repeated("t", 198) + "é", repeated("t", 198) + "é"},
        TitleCase{"flagAtTheLimit", repeated("t", 196) + "\U0001F1E9\U0001F1EA!", repeated("t", 196)},
        TitleCase{"illFormed", "a\xC3", "a\uFFFD"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(FolderTitle, isValidForAnyBytes) {
    std::mt19937 random(11);
    for (int round = 0; round < 2'000; ++round) {
        std::string title(random() % 400, '\0');
        for (char& byte : title)
            byte = static_cast<char>(random());
        const std::string name = safeFolderTitle(title);
        ASSERT_TRUE(isValidUTF8(name) && !name.empty() && name.size() <= 200 &&
                    name.find('/') == std::string::npos);
    }
}

TEST(AttachmentNames, areOneComponentForAnyBytes) {
    std::mt19937 random(13);
    AttachmentNames names;
    for (int round = 0; round < 2'000; ++round) {
        std::string wanted(random() % 400, '\0');
        for (char& byte : wanted)
            byte = static_cast<char>(random());
        const std::string name = names.take(wanted, fallback);
        ASSERT_TRUE(isValidUTF8(name) && !name.empty() && name.size() <= 255);
        ASSERT_EQ(name.find_first_of(std::string_view("/\\:\0\n", 5)), std::string::npos);
        ASSERT_NE(name.front(), '.');
    }
}

} // namespace
} // namespace quillbook
