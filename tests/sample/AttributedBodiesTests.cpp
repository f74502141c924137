#include "store/AttributedBodyDecoder.h"
#include "tools/sample/AttributedBodies.h"
#include "typedstream/TypedStreamDecoder.h"

#include <string>

#include <gmock/gmock.h>

namespace quillbook::sample {
namespace {

using testing::HasSubstr;

Data bytes(std::string_view text) {
    return {text.begin(), text.end()};
}

/// The archive that the system writes for a received message of one word.
TEST(TypedArchiveBody, isWhatTheSystemWrites) {
    using namespace std::string_view_literals;
    const Data expected = bytes("\x04\x0B"
                                "streamtyped\x81\xE8\x03\x84\x01@\x84\x84\x84\x12"
                                "NSAttributedString\0\x84\x84\x08"
                                "NSObject\0\x85\x92\x84\x84\x84\x08"
                                "NSString\x01\x94\x84\x01+\x05"
                                "Hello\x86\x84\x02iI\x01\x05\x92\x84\x84\x84\x0C"
                                "NSDictionary\0\x94\x84\x01i\x01\x92\x84\x96\x96\x1D"
                                "__kIMMessagePartAttributeName\x86\x92\x84\x84\x84\x08"
                                "NSNumber\0\x84\x84\x07"
                                "NSValue\0\x94\x84\x01*\x84\x99\x99\0\x86\x86\x86"sv);
    EXPECT_EQ(typedArchiveBody({{}, "Hello", false}, Mutability::immutable), expected);
}

TEST(TypedArchiveBody, namesTheMutableClasses) {
    const Data archive = typedArchiveBody({{}, "Hello", false}, Mutability::mutableString);
    const std::string text(archive.begin(), archive.end());
    EXPECT_THAT(text, HasSubstr("NSMutableAttributedString"));
    EXPECT_THAT(text, HasSubstr("NSMutableString"));
}

struct BodyCase {
    const char* name;
    BodyContents contents;
};

void PrintTo(const BodyCase& body, std::ostream* stream) {
    *stream << body.name;
}

class WrittenBody : public testing::TestWithParam<BodyCase> {};

TEST_P(WrittenBody, readsBackFromATypedArchive) {
    for (const Mutability mutability : {Mutability::immutable, Mutability::mutableString}) {
        const Data archive = typedArchiveBody(GetParam().contents, mutability);
        const auto body = AttributedBodyDecoder().decode(archive);
        EXPECT_EQ(body.text, bodyText(GetParam().contents));
        EXPECT_EQ(body.payloadState, MessagePayloadState::decoded);
    }
}

TEST_P(WrittenBody, isATypedArchiveToItsLastByte) {
    EXPECT_NO_THROW(TypedStreamDecoder::decode(typedArchiveBody(GetParam().contents, Mutability::immutable)));
}

TEST_P(WrittenBody, readsBackFromAKeyedArchive) {
    const auto body = AttributedBodyDecoder().decode(keyedArchiveBody(GetParam().contents));
    EXPECT_EQ(body.text, bodyText(GetParam().contents));
    EXPECT_EQ(body.payloadState, MessagePayloadState::decoded);
}

INSTANTIATE_TEST_SUITE_P(
    Table, WrittenBody,
    testing::Values(BodyCase{"received", {{}, "Hello", false}}, BodyCase{"sent", {{}, "Hello", true}},
                    BodyCase{"length127", {{}, std::string(127, 'a'), false}},
                    BodyCase{"length128", {{}, std::string(128, 'a'), false}},
                    BodyCase{"length1000", {{}, std::string(1'000, 'z'), true}},
                    BodyCase{"emoji", {{}, "🛶🌲 and more", true}},
                    BodyCase{"attachmentAlone", {{{"at_0_1", "a.jpeg"}}, "", false}},
                    BodyCase{"attachmentsAndText",
                             {{{"at_0_1", "a.jpeg"}, {"at_0_2", "b.jpeg"}}, "both!", true}}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

TEST(TypedArchiveBody, writesLongLengthsInTwoBytes) {
    const Data archive = typedArchiveBody({{}, std::string(300, 'x'), false}, Mutability::immutable);
    EXPECT_THAT(std::string(archive.begin(), archive.end()), HasSubstr("+\x81\x2C\x01xxx"));
}

TEST(TypedArchiveBody, countsRunsInUTF16Units) {
    const Data archive = typedArchiveBody({{}, "🛶", false}, Mutability::immutable);
    EXPECT_THAT(std::string(archive.begin(), archive.end()), HasSubstr("\x84\x02iI\x01\x02"));
}

TEST(BodyText, hasOneReplacementCharacterForEachAttachment) {
    EXPECT_EQ(bodyText({{{"g", "n"}, {"h", "m"}}, "text", false}), "\uFFFC\uFFFCtext");
}

} // namespace
} // namespace quillbook::sample
