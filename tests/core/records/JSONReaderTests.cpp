#include "core/records/JSONReader.h"

#include <random>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

TEST(JSONReader, readsEveryType) {
    const JSONDocument document(
        R"({"text":"Adä \u00e9\ud83d\ude00","number":2.5,"whole":-7,"truth":true,"list":[1,2],
                                    "date":"2024-05-01T12:34:56Z","data":"Zm9v","object":{"a":1}})");
    const JSONValue root = document.root();
    EXPECT_EQ(root.required("text").text(), "Adä é😀");
    EXPECT_EQ(root.required("number").number(), 2.5);
    EXPECT_EQ(root.required("whole").integer(), -7);
    EXPECT_EQ(root.required("whole").number(), -7);
    EXPECT_TRUE(root.required("truth").truth());
    EXPECT_EQ(root.required("list").elements().size(), 2U);
    EXPECT_EQ(root.required("date").date(), Date{736'259'696});
    EXPECT_EQ(root.required("data").data(), (std::vector<std::uint8_t>{'f', 'o', 'o'}));
    EXPECT_EQ(root.required("object").required("a").integer(), 1);
}

TEST(JSONReader, absentAndNullMembersAreNothing) {
    const JSONDocument document(R"({"null":null})");
    EXPECT_FALSE(document.root().optional("null"));
    EXPECT_FALSE(document.root().optional("absent"));
    EXPECT_THROW(document.root().required("null"), JSONDecodingError);
    EXPECT_THROW(document.root().required("absent"), JSONDecodingError);
}

TEST(JSONReader, errorNamesTheMissingKey) {
    try {
        JSONDocument("{}").root().required("title");
        FAIL() << "nothing was thrown";
    } catch (const JSONDecodingError& error) {
        EXPECT_EQ(error.description(), "The JSON data could not be read: the key \"title\" is missing.");
    }
}

TEST(JSONReader, keysAreComparedUnescaped) {
    EXPECT_EQ(JSONDocument(R"({"\u0061b":1})").root().required("ab").integer(), 1);
}

TEST(JSONReader, textsMayHoldZeroBytes) {
    EXPECT_EQ(JSONDocument(R"("a\u0000b")").root().text(), std::string("a\0b", 3));
}

struct TypeCase {
    const char* name;
    std::string json;
    bool text, integer, number, truth, elements, object;
};

class OneType : public testing::TestWithParam<TypeCase> {};

template <typename Read>
bool succeeds(const Read& read) {
    try {
        read();
        return true;
    } catch (const JSONDecodingError&) {
        return false;
    }
}

TEST_P(OneType, isReadAsNoOther) {
    const TypeCase& test = GetParam();
    const JSONDocument document(test.json);
    const JSONValue value = document.root();
    EXPECT_EQ(succeeds([&] { value.text(); }), test.text);
    EXPECT_EQ(succeeds([&] { value.integer(); }), test.integer);
    EXPECT_EQ(succeeds([&] { value.number(); }), test.number);
    EXPECT_EQ(succeeds([&] { value.truth(); }), test.truth);
    EXPECT_EQ(succeeds([&] { value.elements(); }), test.elements);
    EXPECT_EQ(succeeds([&] { value.optional("a"); }), test.object);
}

INSTANTIATE_TEST_SUITE_P(
    Table, OneType,
    testing::Values(TypeCase{"text", "\"7\"", true, false, false, false, false, false},
                    TypeCase{"whole", "7", false, true, true, false, false, false},
                    TypeCase{"greatestWhole", "9223372036854775807", false, true, true, false, false, false},
                    TypeCase{"leastWhole", "-9223372036854775808", false, true, true, false, false, false},
                    TypeCase{"beyondTheGreatestWhole", "9223372036854775808", false, false, true, false,
                             false, false},
                    TypeCase{"fraction", "7.5", false, false, true, false, false, false},
                    TypeCase{"wholeWithAFraction", "7.0", false, false, true, false, false, false},
                    TypeCase{"exponent", "7e0", false, false, true, false, false, false},
                    TypeCase{"truth", "true", false, false, false, true, false, false},
                    TypeCase{"null", "null", false, false, false, false, false, false},
                    TypeCase{"array", "[]", false, false, false, false, true, false},
                    TypeCase{"object", "{}", false, false, false, false, false, true}),
    [](const auto& test) { return std::string(test.param.name); });

class NoDate : public testing::TestWithParam<const char*> {};

TEST_P(NoDate, fails) {
    const JSONDocument document(GetParam());
    EXPECT_THROW(document.root().date(), JSONDecodingError);
}

INSTANTIATE_TEST_SUITE_P(Table, NoDate,
                         testing::Values("0", "null", "\"\"", "\"2024-05-01\"",
                                         "\"2024-05-01T12:34:56.000Z\"", "736259696.0"));

TEST(JSONReader, textThatIsNoBase64Fails) {
    for (const char* json : {"\"Zg\"", "\"*\"", "7", "null", "[]"}) {
        const JSONDocument document(json);
        EXPECT_THROW(document.root().data(), JSONDecodingError) << json;
    }
}

class NoJSON : public testing::TestWithParam<std::string> {};

TEST_P(NoJSON, fails) {
    EXPECT_THROW(JSONDocument{GetParam()}, JSONDecodingError);
}

INSTANTIATE_TEST_SUITE_P(Table, NoJSON,
                         testing::Values("", " ", "\n", "{", "}", "[", "]", "{]", "[}", "\"", "\"a",
                                         "{\"a\"}", "{\"a\":}", "{\"a\":1,}", "[1,]", "[1 2]", "{a:1}",
                                         "{'a':1}", "nul", "True", "01", "+1", ".5", "1.", "1e", "NaN",
                                         "Infinity", "1e999", "--1", "1 2", "{}{}", "[]x", "\"\t\"", "\"\n\"",
                                         "\"\\x\"", "\"\\u12\"", "\"\\ud800\"", "\"\\udc00\\ud800\"",
                                         "\"\xFF\"", "\"\xC0\xAF\"", "\"\xED\xA0\x80\"",
                                         "\"\xF4\x90\x80\x80\"", "\"\xE2\x82\"", std::string("\"a\0b\"", 5),
                                         std::string("\0", 1), "// comment\n1", "/* */1"));

TEST(JSONReader, depthIsLimited) {
    const std::size_t depth = 1'000'000;
    EXPECT_THROW(JSONDocument{std::string(depth, '[')}, JSONDecodingError);
    EXPECT_THROW(JSONDocument{std::string(depth, '[') + std::string(depth, ']')}, JSONDecodingError);
    std::string objects;
    for (std::size_t level = 0; level < 100'000; ++level)
        objects += "{\"a\":";
    EXPECT_THROW(JSONDocument{objects}, JSONDecodingError);
}

TEST(JSONReader, moderateDepthIsRead) {
    EXPECT_NO_THROW(JSONDocument(std::string(500, '[') + std::string(500, ']')));
}

TEST(JSONReader, everyCutOfATextFailsOrIsRead) {
    const std::string text = R"({"a":[1,-2.5e3,"é\u00e9\\",{"b":null,"c":true}],"d":"2024-05-01T12:34:56Z"})";
    for (std::size_t length = 0; length < text.size(); ++length) {
        EXPECT_THROW(JSONDocument{std::string_view(text).substr(0, length)}, JSONDecodingError) << length;
    }
    EXPECT_NO_THROW(JSONDocument{text});
}

TEST(JSONReader, changedBytesDoNoHarm) {
    const std::string text = R"({"a":[1,-2.5e3,"é\u00e9\\",{"b":null,"c":true}],"d":"2024-05-01T12:34:56Z"})";
    std::mt19937 random(20'240'501);
    int readCount = 0;
    for (int round = 0; round < 20'000; ++round) {
        std::string changed = text;
        for (std::size_t change = random() % 4; change > 0; --change) {
            changed[random() % changed.size()] = static_cast<char>(random());
        }
        readCount += succeeds([&] {
            const JSONDocument document(changed);
            document.root().required("a").elements();
            document.root().required("d").date();
        });
    }
    EXPECT_GT(readCount, 1'000);
}

TEST(JSONReader, manyElementsAreRead) {
    std::string json = "[0";
    for (int index = 1; index < 300'000; ++index)
        json += ",0";
    EXPECT_EQ(JSONDocument(json + "]").root().elements().size(), 300'000U);
}

} // namespace
} // namespace quillbook
