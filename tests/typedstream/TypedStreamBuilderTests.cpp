#include "tests/support/TypedStreamBuilder.h"
#include "typedstream/TypedStreamDecoder.h"

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using namespace typedstream;
using test::TypedStreamBuilder;

ObjectItem object(const char* name, std::uint64_t version, std::vector<Object> values) {
    return ObjectItem{{name, version}, std::move(values)};
}

std::vector<Archivable> itemsOfABody(const ObjectItem& text, std::uint64_t length) {
    return {text, DataItem{{std::int64_t{1}, length}}, object("NSDictionary", 0, {std::int64_t{1}}),
            object("NSString", 1, {"__kIMMessagePartAttributeName"}),
            object("NSNumber", 0, {std::int64_t{0}})};
}

TEST(ArchivedBody, HasTheBytesThatMessagesWrites) {
    TypedStreamBuilder expected;
    expected.raw({0x84, 0x01, 0x40, 0x84, 0x84, 0x84, 0x12}).raw("NSAttributedString").raw({0x00});
    expected.raw({0x84, 0x84, 0x08}).raw("NSObject").raw({0x00, 0x85, 0x92, 0x84, 0x84, 0x84, 0x08});
    expected.raw("NSString").raw({0x01, 0x94, 0x84, 0x01, 0x2B, 0x02}).raw("Hi");
    expected.raw({0x86, 0x84, 0x02, 0x69, 0x49, 0x01, 0x02, 0x92, 0x84, 0x84, 0x84, 0x0C})
        .raw("NSDictionary");
    expected.raw({0x00, 0x94, 0x84, 0x01, 0x69, 0x01, 0x92, 0x84, 0x96, 0x96, 0x1D});
    expected.raw("__kIMMessagePartAttributeName").raw({0x86, 0x92, 0x84, 0x84, 0x84, 0x08}).raw("NSNumber");
    expected.raw({0x00, 0x84, 0x84, 0x07})
        .raw("NSValue")
        .raw({0x00, 0x94, 0x84, 0x01, 0x2A, 0x84, 0x84, 0x01, 0x71});
    expected.raw({0x9D, 0x00, 0x86, 0x86, 0x86});
    EXPECT_EQ(test::archivedBody("Hi"), expected.bytes());
}

TEST(ArchivedBody, DecodesToItsTextAndAttributes) {
    EXPECT_EQ(TypedStreamDecoder::decode(test::archivedBody("See you at Zoë’s 🌷")),
              itemsOfABody(object("NSString", 1, {"See you at Zoë’s 🌷"}), 19));
}

TEST(ArchivedBody, DecodesWithALengthOfTwoBytes) {
    const std::string text(300, 'a');
    EXPECT_EQ(TypedStreamDecoder::decode(test::archivedBody(text)).front(),
              Archivable(object("NSString", 1, {text})));
}

TEST(ArchivedBody, DecodesWithALengthOfFourBytes) {
    const std::string text(70000, 'a');
    EXPECT_EQ(TypedStreamDecoder::decode(test::archivedBody(text)).front(),
              Archivable(object("NSString", 1, {text})));
}

TEST(ArchivedBody, DecodesWithMutableClasses) {
    EXPECT_EQ(TypedStreamDecoder::decode(test::archivedMutableBody("Hi")),
              itemsOfABody(object("NSMutableString", 1, {"Hi"}), 2));
}

TEST(TypedStreamBuilder, RefersBackToAStringThatItWroteBefore) {
    TypedStreamBuilder builder;
    builder.types("@").string(TypedStreamBuilder::nsString, "key");
    builder.types("@").string(TypedStreamBuilder::nsString, "other");
    builder.types("@").string(TypedStreamBuilder::nsString, "other");
    EXPECT_EQ(TypedStreamDecoder::decode(builder.bytes()),
              (std::vector<Archivable>{object("NSString", 1, {"key"}), object("NSString", 1, {"other"}),
                                       object("NSString", 1, {"other"})}));
}

TEST(TypedStreamBuilder, RefersBackToTheSignatureOfANumber) {
    TypedStreamBuilder builder;
    builder.types("i").integer(1).types("@").number(4).types("@").number(5);
    EXPECT_EQ(TypedStreamDecoder::decode(builder.bytes()),
              (std::vector<Archivable>{DataItem{{std::int64_t{1}}}, object("NSNumber", 0, {std::int64_t{4}}),
                                       object("NSNumber", 0, {std::int64_t{5}})}));
}

} // namespace
} // namespace quillbook
