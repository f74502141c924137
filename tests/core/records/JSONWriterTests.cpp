#include "core/records/JSONReader.h"
#include "core/records/JSONWriter.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <stdexcept>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

std::string written(const std::function<void(JSONWriter&)>& write, JSONForm form = JSONForm::pretty) {
    std::string text;
    JSONWriter json([&](std::string_view piece) { text += piece; }, form);
    write(json);
    json.finish();
    return text;
}

void writeExample(JSONWriter& json) {
    json.beginObject();
    json.key("emptyArray");
    json.beginArray();
    json.endArray();
    json.key("emptyObject");
    json.beginObject();
    json.endObject();
    json.key("list");
    json.beginArray();
    json.value(1);
    json.value("two");
    json.beginArray();
    json.value(true);
    json.endArray();
    json.beginObject();
    json.member("a", false);
    json.member("b", 2.5);
    json.endObject();
    json.beginObject();
    json.endObject();
    json.endArray();
    json.member("path", "attachments/a/b.jpg");
    json.endObject();
}

TEST(JSONWriter, prettyFormIsExact) {
    EXPECT_EQ(written(writeExample), R"({
  "emptyArray" : [],
  "emptyObject" : {},
  "list" : [
    1,
    "two",
    [
      true
    ],
    {
      "a" : false,
      "b" : 2.5
    },
    {}
  ],
  "path" : "attachments/a/b.jpg"
})");
}

TEST(JSONWriter, compactFormIsExact) {
    EXPECT_EQ(
        written(writeExample, JSONForm::compact),
        R"({"emptyArray":[],"emptyObject":{},"list":[1,"two",[true],{"a":false,"b":2.5},{}],"path":"attachments/a/b.jpg"})");
}

TEST(JSONWriter, singleValuesStandAlone) {
    EXPECT_EQ(written([](JSONWriter& json) { json.value("Ada"); }), "\"Ada\"");
    EXPECT_EQ(written([](JSONWriter& json) { json.value(-7); }), "-7");
    EXPECT_EQ(written([](JSONWriter& json) {
                  json.beginArray();
                  json.endArray();
              }),
              "[]");
}

TEST(JSONWriter, absentMembersHaveNoKey) {
    EXPECT_EQ(written([](JSONWriter& json) {
                  json.beginObject();
                  json.member("absent", std::optional<std::string>());
                  json.member("present", std::optional<std::string>("x"));
                  json.endObject();
              }),
              "{\n  \"present\" : \"x\"\n}");
}

TEST(JSONWriter, datesDataAndIdentifiersAreTexts) {
    EXPECT_EQ(written([](JSONWriter& json) { json.value(Date{736'259'696.75}); }),
              "\"2024-05-01T12:34:56Z\"");
    const std::vector<std::uint8_t> bytes{0xFF, 0xEF, 0xFF};
    EXPECT_EQ(written([&](JSONWriter& json) { json.value(std::span(bytes)); }), "\"/+//\"");
    EXPECT_EQ(written([](JSONWriter& json) { json.value(SourceID{"chat/7"}); }), "\"chat/7\"");
}

TEST(JSONWriter, wholeNumbersAreWrittenInFull) {
    EXPECT_EQ(written([](JSONWriter& json) { json.value(std::numeric_limits<std::int64_t>::min()); }),
              "-9223372036854775808");
    EXPECT_EQ(written([](JSONWriter& json) { json.value(std::numeric_limits<std::int64_t>::max()); }),
              "9223372036854775807");
}

struct EscapeCase {
    const char* name;
    std::string text;
    std::string json;
};

class JSONString : public testing::TestWithParam<EscapeCase> {};

TEST_P(JSONString, isEscapedAsFarAsItMustBe) {
    std::string json;
    appendJSONString(json, GetParam().text);
    EXPECT_EQ(json, GetParam().json);
}

INSTANTIATE_TEST_SUITE_P(
    Table, JSONString,
    testing::Values(EscapeCase{"empty", "", R"("")"},                                               //
                    EscapeCase{"plain", "Ada", R"("Ada")"}, EscapeCase{"slash", "a/b", R"("a/b")"}, //
                    EscapeCase{"quote", "\"", R"("\"")"}, EscapeCase{"backslash", "\\", R"("\\")"},
                    EscapeCase{"lineBreaks", "a\r\nb", R"("a\r\nb")"},
                    EscapeCase{"otherShortForms", "\b\f\t", R"("\b\f\t")"},
                    EscapeCase{"zero", std::string(1, '\0'), R"("\u0000")"},
                    EscapeCase{"controls", "\x01\x0B\x1B\x1F", R"("\u0001\u000b\u001b\u001f")"},
                    EscapeCase{"deleteStands", "\x7F", "\"\x7F\""},
                    EscapeCase{"everythingElseStands", "é€😀\u2028<>&'", "\"é€😀\u2028<>&'\""}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(JSONWriter, keysAreEscapedToo) {
    EXPECT_EQ(written(
                  [](JSONWriter& json) {
                      json.beginObject();
                      json.member("a\"b/\n", 1);
                      json.endObject();
                  },
                  JSONForm::compact),
              R"({"a\"b/\n":1})");
}

TEST(JSONWriter, randomTextsComeBack) {
    std::mt19937 random(20'240'501);
    const std::vector<std::string> parts{"a",    "\"", "\\", "/",      "\n",     std::string(1, '\0'),
                                         "\x1F", "é",  "😀",  "\u2028", "\\u0041"};
    for (int round = 0; round < 2'000; ++round) {
        std::string text;
        for (std::size_t part = random() % 12; part > 0; --part)
            text += parts[random() % parts.size()];
        const JSONDocument document(written([&](JSONWriter& json) { json.value(text); }));
        ASSERT_EQ(document.root().text(), text);
    }
}

TEST(JSONWriter, numbersComeBack) {
    std::mt19937_64 random(20'240'501);
    for (int round = 0; round < 2'000; ++round) {
        const auto whole = static_cast<std::int64_t>(random());
        const double fractional = std::ldexp(static_cast<double>(whole), -static_cast<int>(random() % 200));
        ASSERT_EQ(JSONDocument(written([&](JSONWriter& json) { json.value(whole); })).root().integer(),
                  whole);
        ASSERT_EQ(JSONDocument(written([&](JSONWriter& json) { json.value(fractional); })).root().number(),
                  fractional);
    }
}

TEST(JSONWriter, streamsALongValueInPieces) {
    std::size_t greatestPiece = 0;
    std::size_t total = 0;
    JSONWriter json([&](std::string_view piece) {
        greatestPiece = std::max(greatestPiece, piece.size());
        total += piece.size();
    });
    json.beginArray();
    for (int index = 0; index < 200'000; ++index)
        json.value("a message of some length");
    json.endArray();
    json.finish();
    EXPECT_GT(total, 4'000'000U);
    EXPECT_LT(greatestPiece, 200'000U);
}

TEST(JSONWriter, streamsAListOfNumbersInPieces) {
    std::size_t greatestPiece = 0;
    JSONWriter json([&](std::string_view piece) { greatestPiece = std::max(greatestPiece, piece.size()); });
    json.beginArray();
    for (int index = 0; index < 1'000'000; ++index)
        json.value(index);
    json.endArray();
    json.finish();
    EXPECT_LT(greatestPiece, 200'000U);
}

TEST(JSONWriter, passesOnWhatTheSinkThrows) {
    JSONWriter json([](std::string_view) { throw std::runtime_error("full"); });
    json.value("x");
    EXPECT_THROW(json.finish(), std::runtime_error);
}

} // namespace
} // namespace quillbook
