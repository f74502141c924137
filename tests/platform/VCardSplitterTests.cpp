#include "core/text/UTF8.h"
#include "platform/linux/VCardSplitter.h"

#include <random>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillbook {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> split(std::string_view stream, std::size_t pieceSize = 1'000'000) {
    std::vector<std::string> cards;
    VCardSplitter splitter([&](const std::string& card) { cards.push_back(card); });
    for (std::size_t start = 0; start < stream.size(); start += pieceSize) {
        splitter.add(stream.substr(start, pieceSize));
    }
    splitter.finish();
    return cards;
}

std::string card(std::string_view properties) {
    return "BEGIN:VCARD\r\n" + std::string(properties) + "END:VCARD\r\n";
}

struct CardCase {
    const char* name;
    std::string stream;
    std::string properties; ///< Of the one card that comes of it.
};

class OneCard : public testing::TestWithParam<CardCase> {};

TEST_P(OneCard, comesOfTheStream) {
    EXPECT_THAT(split(GetParam().stream), ElementsAre(card(GetParam().properties)));
}

TEST_P(OneCard, comesOfSingleBytesToo) {
    EXPECT_THAT(split(GetParam().stream, 1), ElementsAre(card(GetParam().properties)));
}

INSTANTIATE_TEST_SUITE_P(
    Table, OneCard,
    testing::Values(
        CardCase{"withoutProperties", card(""), ""}, //
        CardCase{"wantedProperties",
                 card("FN:Ada Quill\r\nN:Quill;Ada;;;\r\nORG:Bank\r\nTEL:1\r\nEMAIL:a\r\n"),
                 "FN:Ada Quill\r\nN:Quill;Ada;;;\r\nORG:Bank\r\nTEL:1\r\nEMAIL:a\r\n"},
        CardCase{"otherPropertiesAreLeftOut", card("VERSION:4.0\r\nFN:Ada\r\nNOTE:x\r\nX-TEL:1\r\n"),
                 "FN:Ada\r\n"},
        CardCase{"lineFeedsAlone", "BEGIN:VCARD\nFN:Ada\nEND:VCARD\n", "FN:Ada\r\n"},
        CardCase{"withoutALastLineBreak", "BEGIN:VCARD\r\nFN:Ada\r\nEND:VCARD", "FN:Ada\r\n"},
        CardCase{"byteOrderMark", "\xEF\xBB\xBF" + card("FN:Ada\r\n"), "FN:Ada\r\n"},
        CardCase{"smallLetters", "begin:vcard\r\nfn:Ada\r\nend:vcard\r\n", "fn:Ada\r\n"},
        CardCase{"blanksBehindTheWords", "BEGIN: VCARD\t\r\nFN:Ada\r\nEND:VCARD \r\n", "FN:Ada\r\n"},
        CardCase{"groups", card("item1.TEL;type=HOME:1\r\n"), "item1.TEL;type=HOME:1\r\n"},
        CardCase{"foldedByABlank", card("FN:Ada\r\n  Quill\r\n"), "FN:Ada Quill\r\n"},
        CardCase{"foldedByATab", card("FN:Ada\r\n\tm\r\n\tQuill\r\n"), "FN:AdamQuill\r\n"},
        CardCase{"foldedWithinACharacter", card("FN:J\xC3\r\n \xB6rg\r\n"), "FN:Jörg\r\n"},
        CardCase{"softLineBreak", card("FN;ENCODING=QUOTED-PRINTABLE:Ada=\r\n Quill=\r\n!\r\nTEL:1\r\n"),
                 "FN;ENCODING=QUOTED-PRINTABLE:AdaQuill!\r\nTEL:1\r\n"},
        CardCase{"softLineBreakOfALeftOutProperty", card("NOTE;QUOTED-PRINTABLE:x=\r\nTEL:1\r\nTEL:2\r\n"),
                 "TEL:2\r\n"},
        CardCase{"equalsSignElsewhere", card("FN:Ada=\r\nTEL:1\r\n"), "FN:Ada=\r\nTEL:1\r\n"},
        CardCase{"unindentedBase64", card("PHOTO;ENCODING=BASE64:AAAA\r\nBBBB\r\n\r\nTEL:1\r\n"),
                 "PHOTO;ENCODING=BASE64:AAAABBBB\r\nTEL:1\r\n"},
        CardCase{"emptyLines", card("\r\n\r\nFN:Ada\r\n\r\n"), "FN:Ada\r\n"},
        CardCase{"rubbishAround", "rubbish\r\nTEL:1\r\n" + card("FN:Ada\r\n") + "TEL:2\r\n:::\r\n",
                 "FN:Ada\r\n"},
        CardCase{"rubbishWithin", card("no colon\r\n:\r\n;;;\r\n.\r\nFN:Ada\r\n"), "FN:Ada\r\n"},
        CardCase{"otherComponentsWithin", card("BEGIN:VCALENDAR\r\nFN:Ada\r\nEND:VCALENDAR\r\n"),
                 "FN:Ada\r\n"},
        CardCase{"agentsCard", card("FN:Ada\r\nAGENT:\r\n" + card("FN:Agent\r\nTEL:1\r\n") + "TEL:2\r\n"),
                 "FN:Ada\r\nTEL:2\r\n"},
        CardCase{"agentsAgentsCard",
                 card("AGENT:\r\n" + card("AGENT:\r\n" + card("TEL:1\r\n")) + "TEL:2\r\n"), "TEL:2\r\n"},
        CardCase{"secondPictureIsLeftOut", card("PHOTO:a\r\nPHOTO:b\r\n"), "PHOTO:a\r\n"},
        CardCase{"invalidUTF8IsRepaired", card("FN:A\xFF\xC0\r\n"), "FN:A\uFFFD\uFFFD\r\n"},
        CardCase{"zeroBytesAndLoneCarriageReturns", card(std::string("FN:A\0B\rTEL:1\r\n", 14)),
                 "FN:A B TEL:1\r\n"},
        CardCase{"secondEnd", card("FN:Ada\r\n") + "END:VCARD\r\n", "FN:Ada\r\n"},
        CardCase{"cutOffSecondCard", card("FN:Ada\r\n") + "BEGIN:VCARD\r\nFN:Ben\r\nTEL:+1415", "FN:Ada\r\n"},
        CardCase{"colonInAQuotedParameter", card("TEL;X=\"a:b\":1\r\n"), "TEL;X=\"a:b\":1\r\n"},
        CardCase{"openQuote", card("TEL;X=\"a:1\r\nFN:Ada\r\n"), "TEL;X=\"a:1\r\nFN:Ada\r\n"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(VCardSplitter, givesManyCardsInOrder) {
    EXPECT_THAT(split(card("FN:Ada\r\n") + "\r\n" + card("FN:Ben\r\n") + card("")),
                ElementsAre(card("FN:Ada\r\n"), card("FN:Ben\r\n"), card("")));
}

TEST(VCardSplitter, nextCardEndsOneWithoutAnEnd) {
    EXPECT_THAT(split("BEGIN:VCARD\r\nFN:Ada\r\n" + card("FN:Ben\r\n")),
                ElementsAre(card("FN:Ada\r\n"), card("FN:Ben\r\n")));
}

TEST(VCardSplitter, findsTheCardsBehindAnAgentWithoutAnEnd) {
    const std::string unfinished =
        "BEGIN:VCARD\r\nFN:Ada\r\nAGENT:\r\nBEGIN:VCARD\r\nFN:Agent\r\nEND:VCARD\r\n";
    EXPECT_THAT(split(unfinished + card("FN:Ben\r\n")), ElementsAre(card("FN:Ada\r\n"), card("FN:Ben\r\n")));
}

TEST(VCardSplitter, hasNothingToGiveForOtherFiles) {
    EXPECT_THAT(split(""), IsEmpty());
    EXPECT_THAT(split("\r\n\r\n"), IsEmpty());
    EXPECT_THAT(split("<html>BEGIN:VCARD</html>"), IsEmpty());
    EXPECT_THAT(split(std::string(100'000, '\0')), IsEmpty());
}

TEST(VCardSplitter, overlongTextIsLeftOut) {
    EXPECT_THAT(split(card("FN:" + std::string(70'000, 'x') + "\r\nTEL:1\r\n")),
                ElementsAre(card("TEL:1\r\n")));
}

TEST(VCardSplitter, overlongFoldedTextIsLeftOut) {
    std::string folded = "FN:A";
    for (int line = 0; line < 70'000; ++line)
        folded += "\r\n x";
    EXPECT_THAT(split(card(folded + "\r\nTEL:1\r\n")), ElementsAre(card("TEL:1\r\n")));
}

TEST(VCardSplitter, overlongLineLeavesTheRestOfTheCard) {
    EXPECT_THAT(split(card("PHOTO;ENCODING=b:" + std::string(20'000'000, 'A') + "\r\nTEL:1\r\n")),
                ElementsAre(card("TEL:1\r\n")));
}

TEST(VCardSplitter, continuationOfAnOverlongLineIsLeftOutWithIt) {
    EXPECT_THAT(split(card("FN:" + std::string(20'000'000, 'A') + "\r\n TEL:2\r\nTEL:1\r\n")),
                ElementsAre(card("TEL:1\r\n")));
}

TEST(VCardSplitter, pictureOfMegabytesIsKept) {
    const std::string photo = "PHOTO;ENCODING=b:" + std::string(8'000'000, 'A') + "\r\n";
    EXPECT_THAT(split(card(photo)), ElementsAre(card(photo)));
}

TEST(VCardSplitter, propertyOfManySeparatorsIsLeftOut) {
    for (const char separator : {';', ','}) {
        const std::string many(1'000, separator);
        EXPECT_THAT(split(card("TEL:" + many + "\r\nFN:Ada\r\n")), ElementsAre(card("FN:Ada\r\n")));
        EXPECT_THAT(split(card("PHOTO" + many + ":A\r\nFN:Ada\r\n")), ElementsAre(card("FN:Ada\r\n")));
    }
}

TEST(VCardSplitter, keepsAMegabyteOfTextsOfACardAtTheMost) {
    std::string properties;
    for (int line = 0; line < 500'000; ++line)
        properties += "TEL:1234567\r\n";
    const std::vector<std::string> cards = split(card(properties));
    ASSERT_EQ(cards.size(), 1U);
    EXPECT_LT(cards[0].size(), 1'500'000U);
}

TEST(VCardSplitter, nextCardHasItsOwnMegabyte) {
    std::string properties;
    for (int line = 0; line < 200'000; ++line)
        properties += "TEL:1234567\r\n";
    EXPECT_EQ(split(card(properties) + card("PHOTO:a\r\n") + card("PHOTO:b\r\nTEL:1\r\n"))[2],
              card("PHOTO:b\r\nTEL:1\r\n"));
}

TEST(VCardSplitter, bytesAtRandomGiveTheSameCardsInAnyPieces) {
    std::mt19937 random(20'240'501);
    const std::vector<std::string> words{"BEGIN:VCARD",
                                         "END:VCARD",
                                         "\r\n",
                                         "\n",
                                         " ",
                                         "=",
                                         "FN:",
                                         "AGENT:",
                                         "TEL;X=\"",
                                         "PHOTO",
                                         ";ENCODING=BASE64:",
                                         ";QUOTED-PRINTABLE:",
                                         "\xC3",
                                         "\xFF",
                                         "\r",
                                         ".",
                                         "Ada",
                                         ";"};
    for (int round = 0; round < 500; ++round) {
        std::string stream;
        for (int word = 0; word < 80; ++word)
            stream += words[random() % words.size()] + (random() % 3 == 0 ? "\n" : "");
        const auto cards = split(stream);
        ASSERT_EQ(cards, split(stream, 1)) << stream;
        for (const std::string& each : cards)
            ASSERT_TRUE(isValidUTF8(each));
    }
}

} // namespace
} // namespace quillbook
