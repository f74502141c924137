#include "store/AttributedBodyDecoder.h"
#include "tests/store/KeyedArchiveFixture.h"
#include "tests/support/TypedStreamBuilder.h"

#include <algorithm>

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using Body = AttributedBodyDecoder::Body;
using Bytes = std::vector<std::uint8_t>;
using State = MessagePayloadState;
using test::TypedStreamBuilder;

Bytes bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

Body decoded(const Bytes& blob) {
    return AttributedBodyDecoder().decode(blob);
}

Body decodedText(std::string_view text) {
    return {std::string(text), State::decoded};
}

const Body unsupported{std::nullopt, State::unsupported};
const auto nameOf = [](const auto& entry) { return std::string(entry.param.name); };

// ---- Bodies as Messages writes them

TEST(AttributedBodyDecoder, TakesNoBlobForNothingToRead) {
    EXPECT_EQ(AttributedBodyDecoder().decode(std::nullopt), (Body{std::nullopt, State::decoded}));
    EXPECT_EQ(decoded({}), (Body{std::nullopt, State::decoded}));
}

struct TextCase {
    const char* name;
    std::string text;
};

class ArchivedText : public testing::TestWithParam<TextCase> {};

TEST_P(ArchivedText, IsReadBackWhole) {
    EXPECT_EQ(decoded(test::archivedBody(GetParam().text)), decodedText(GetParam().text));
}

TEST_P(ArchivedText, IsReadBackWholeFromMutableClasses) {
    EXPECT_EQ(decoded(test::archivedMutableBody(GetParam().text)), decodedText(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Table, ArchivedText,
    testing::Values(TextCase{"short", "Tea at four?"}, TextCase{"oneLetter", "k"},
                    TextCase{"otherScripts", "Zoë, ключ, 鍵, مفتاح"},
                    TextCase{"emoji", "👩‍👩‍👧 ❤️"}, TextCase{"attachmentAlone", "\uFFFC"},
                    TextCase{"blanksAtBothEnds", "  a \n"}, TextCase{"linesAndTabs", "a\tb\nc\r\nd"},
                    TextCase{"longestWithAOneByteLength", std::string(127, 'a')},
                    TextCase{"shortestWithATwoByteLength", std::string(128, 'a')},
                    TextCase{"longestWithAPositiveTwoByteLength", std::string(32767, 'a')},
                    TextCase{"shortestWithAFourByteLength", std::string(32768, 'a')},
                    TextCase{"withAFourByteLength", std::string(70000, 'a')},
                    TextCase{"closingPairInside", "\u1184 jamo"}, TextCase{"openingPairInside", "one + one"},
                    TextCase{"marker", "streamtyped"},
                    TextCase{"looksLikeXML", "<plist version=\"1.0\"></plist>"}),
    nameOf);

// ---- The framed scan

Bytes framed(const Bytes& frame) {
    TypedStreamBuilder builder;
    builder.raw({0x84, 0x01, 0x2B}).raw(frame).raw({0x86, 0x84});
    return builder.bytes();
}

struct FrameCase {
    const char* name;
    Bytes frame;
    Body expected;
};

class Frame : public testing::TestWithParam<FrameCase> {};

/// What stands around the frame is no archive that the whole decoder could read: it decides alone.
TEST_P(Frame, GivesItsTextOnlyWhenItsLengthFits) {
    EXPECT_EQ(decoded(framed(GetParam().frame)), GetParam().expected);
}

Bytes twoByteFrame(std::size_t declared, std::size_t actual) {
    Bytes frame(3 + actual, 'a');
    frame[0] = 0x81;
    frame[1] = static_cast<std::uint8_t>(declared);
    frame[2] = static_cast<std::uint8_t>(declared >> 8U);
    return frame;
}

INSTANTIATE_TEST_SUITE_P(
    Table, Frame,
    testing::Values(FrameCase{"fits", {2, 'H', 'i'}, decodedText("Hi")}, FrameCase{"empty", {}, unsupported},
                    FrameCase{"lengthZero", {0}, unsupported},
                    FrameCase{"oneByteShort", {3, 'H', 'i'}, unsupported},
                    FrameCase{"oneByteLong", {1, 'H', 'i'}, unsupported},
                    FrameCase{"largestOneByteLength",
                              [] {
                                  Bytes frame(128, 'a');
                                  frame[0] = 127;
                                  return frame;
                              }(),
                              decodedText(std::string(127, 'a'))},
                    FrameCase{"lengthByteOf0x80",
                              [] {
                                  Bytes frame(129, 'a');
                                  frame[0] = 128;
                                  return frame;
                              }(),
                              unsupported},
                    FrameCase{"twoBytesFit", twoByteFrame(300, 300), decodedText(std::string(300, 'a'))},
                    FrameCase{"twoBytesLowFirst", twoByteFrame(0x0102, 0x0102),
                              decodedText(std::string(0x0102, 'a'))},
                    FrameCase{"twoBytesZero", twoByteFrame(0, 0), unsupported},
                    FrameCase{"twoBytesOneShort", twoByteFrame(300, 299), unsupported},
                    FrameCase{"twoBytesOneLong", twoByteFrame(300, 301), unsupported},
                    FrameCase{"twoBytesCutShort", {0x81, 1}, unsupported},
                    FrameCase{"fourBytes", {0x82, 2, 0, 0, 0, 'H', 'i'}, unsupported},
                    FrameCase{"notUTF8", {2, 'H', 0xFF}, unsupported},
                    FrameCase{"control", {3, 'a', 1, 'b'}, unsupported}),
    nameOf);

TEST(FramedScan, SurvivesAnArchiveThatTheDecoderRefuses) {
    Bytes blob = test::archivedBody("Tea");
    blob[0] = 3;
    EXPECT_EQ(decoded(blob), decodedText("Tea"));
}

TEST(FramedScan, SurvivesAnArchiveThatIsCutBehindTheText) {
    Bytes blob = test::archivedBody("Tea");
    const Bytes pair = {0x86, 0x84};
    const auto closing = std::search(blob.begin(), blob.end(), pair.begin(), pair.end());
    blob.erase(closing + 2, blob.end());
    EXPECT_EQ(decoded(blob), decodedText("Tea"));
}

// ---- The object scan, behind a frame that does not fit

TypedStreamBuilder oneString(const TypedStreamBuilder::ClassChain& type, std::string_view text) {
    TypedStreamBuilder builder;
    builder.types("@").beginObject(type).types("+").text(text).endObject();
    return builder;
}

TEST(ObjectScan, ReadsAnArchiveWithoutAClosingPair) {
    EXPECT_EQ(decoded(oneString(TypedStreamBuilder::nsString, "Tea").bytes()), decodedText("Tea"));
}

TEST(ObjectScan, ReadsAMutableString) {
    EXPECT_EQ(decoded(oneString(TypedStreamBuilder::nsMutableString, "Tea").bytes()), decodedText("Tea"));
}

TEST(ObjectScan, TakesAFrameThatIsCutByAPairWithinTheText) {
    // The third character's bytes hold the closing pair, so the frame ends within the text.
    TypedStreamBuilder builder = oneString(TypedStreamBuilder::nsString, "Tea \u1184");
    EXPECT_EQ(decoded(builder.types("i").integer(1).bytes()), decodedText("Tea \u1184"));
}

TEST(ObjectScan, TakesAFrameWhoseLengthDiffersByOneByte) {
    // The text's last byte and the start of the next value look like the closing pair: the frame is one byte
    // short.
    TypedStreamBuilder builder;
    builder.types("@")
        .beginObject(TypedStreamBuilder::nsString)
        .types("+")
        .text("Tea\u0446")
        .types("i")
        .integer(1);
    EXPECT_EQ(decoded(builder.bytes()), decodedText("Tea\u0446"));
}

TEST(ObjectScan, PassesOverObjectsOfOtherClasses) {
    TypedStreamBuilder builder;
    builder.types("i").integer(1).types("@").number(4).types("@").string(TypedStreamBuilder::nsString, "Tea");
    EXPECT_EQ(decoded(builder.bytes()), decodedText("Tea"));
}

TEST(ObjectScan, RefusesASubclassOfAnotherName) {
    EXPECT_EQ(decoded(oneString({{"NSLetterString", 1}, {"NSObject", 0}}, "Tea").bytes()), unsupported);
}

TEST(ObjectScan, StopsAtAnEmptyStringThoughALaterOneHoldsText) {
    TypedStreamBuilder builder = oneString(TypedStreamBuilder::nsString, "");
    EXPECT_EQ(decoded(builder.types("@").string(TypedStreamBuilder::nsString, "Tea").bytes()), unsupported);
}

TEST(ObjectScan, StopsAtAStringWhoseFirstValueIsNoText) {
    TypedStreamBuilder builder;
    builder.types("@").beginObject(TypedStreamBuilder::nsString).types("i").integer(1).endObject();
    EXPECT_EQ(decoded(builder.types("@").string(TypedStreamBuilder::nsString, "Tea").bytes()), unsupported);
}

TEST(ObjectScan, RefusesATextWithAControlCharacter) {
    EXPECT_EQ(decoded(test::archivedBody("a\x01"
                                         "b")),
              unsupported);
}

TEST(ObjectScan, DropsWhatItReadBeforeAnError) {
    TypedStreamBuilder builder = oneString(TypedStreamBuilder::nsString, "Tea");
    EXPECT_EQ(decoded(builder.raw({0x91, 0x00}).bytes()), unsupported);
}

TEST(ObjectScan, GivesNothingForAHeaderAlone) {
    EXPECT_EQ(decoded(TypedStreamBuilder().bytes()), unsupported);
}

// ---- Without the marker

TEST(PlainBody, IsOnlyPartiallyDecoded) {
    EXPECT_EQ(decoded(bytesOf("Tea at four")), (Body{"Tea at four", State::partiallyDecoded}));
}

TEST(PlainBody, ThatIsNoTextIsUnsupported) {
    EXPECT_EQ(decoded({0x00, 0xFF, 0x80}), unsupported);
}

TEST(PlainBody, ThatLooksLikeXMLIsText) {
    const std::string_view text = "<plist version=\"1.0\"><string>Tea</string></plist>";
    EXPECT_EQ(decoded(bytesOf(text)), (Body{std::string(text), State::partiallyDecoded}));
}

TEST(Marker, CountsUpToOffset31) {
    const Bytes blob = bytesOf(std::string(31, '.') + "streamtyped\x01+\x02Hi\x86\x84");
    EXPECT_EQ(decoded(blob), decodedText("Hi"));
}

TEST(Marker, DoesNotCountFromOffset32) {
    EXPECT_EQ(decoded(bytesOf(std::string(32, '.') + "streamtyped\x01+\x02Hi\x86\x84")), unsupported);
    const std::string text = std::string(32, '.') + "streamtyped";
    EXPECT_EQ(decoded(bytesOf(text)), (Body{text, State::partiallyDecoded}));
}

TEST(Marker, CountsWhereTheBlobEndsWithIt) {
    EXPECT_EQ(decoded(bytesOf("streamtyped")), unsupported);
}

// ---- Keyed archives

TEST(KeyedBody, IsDecoded) {
    const auto archive = test::archivedAttributedString([](auto& list) { return list.ascii("Tea"); });
    EXPECT_EQ(decoded(bytesOf(archive)), decodedText("Tea"));
}

TEST(KeyedBody, IsTakenWithoutTheTestForControlCharacters) {
    const auto archive = test::archivedAttributedString([](auto& list) { return list.ascii("a\x01"); });
    EXPECT_EQ(decoded(bytesOf(archive)), decodedText("a\x01"));
    const auto empty = test::archivedAttributedString([](auto& list) { return list.ascii(""); });
    EXPECT_EQ(decoded(bytesOf(empty)), decodedText(""));
}

TEST(KeyedBody, OfAnotherObjectIsUnsupported) {
    const auto archive = test::archivedAttributedString([](auto& list) { return list.integer(7); });
    EXPECT_EQ(decoded(bytesOf(archive)), unsupported);
}

// ---- checkedText

struct CheckedCase {
    const char* name;
    std::string bytes;
    bool stands;
};

class CheckedText : public testing::TestWithParam<CheckedCase> {};

TEST_P(CheckedText, StandsUnchangedOrNotAtAll) {
    const auto& bytes = GetParam().bytes;
    EXPECT_EQ(checkedText(bytes), GetParam().stands ? std::optional(bytes) : std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CheckedText,
    testing::Values(
        CheckedCase{"empty", "", false}, CheckedCase{"plain", "Tea", true},
        CheckedCase{"blanksStay", " Tea \n", true}, CheckedCase{"tab", "\t", true},
        CheckedCase{"lineFeed", "\n", true}, CheckedCase{"carriageReturn", "\r", true},
        CheckedCase{"objectReplacement", "\uFFFC", true}, CheckedCase{"nul", std::string("a\0", 2), false},
        CheckedCase{"startOfHeading", "\x01", false}, CheckedCase{"verticalTab", "\x0B", false},
        CheckedCase{"formFeed", "\x0C", false}, CheckedCase{"escape", "a\x1B", false},
        CheckedCase{"unitSeparator", "\x1F", false}, CheckedCase{"blank", " ", true},
        CheckedCase{"delete", "\x7F", false}, CheckedCase{"firstUpperControl", "\xC2\x80", false},
        CheckedCase{"nextLine", "\xC2\x85", false}, CheckedCase{"lastUpperControl", "\xC2\x9F", false},
        CheckedCase{"noBreakSpace", "\xC2\xA0", true}, CheckedCase{"softHyphenIsNoControl", "\xC2\xAD", true},
        CheckedCase{"zeroWidthJoinerIsNoControl", "\u200D", true},
        CheckedCase{"lineSeparatorIsNoControl", "\u2028", true},
        CheckedCase{"continuationBytesLikeControls", "\xE2\x80\x85\xF0\x9F\x80\x81", true},
        CheckedCase{"illFormed", "a\xC3", false}, CheckedCase{"overlong", "\xC0\x80", false},
        CheckedCase{"surrogate", "\xED\xA0\x80", false}),
    nameOf);

} // namespace
} // namespace quillbook
