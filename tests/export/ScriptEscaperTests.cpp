#include "core/records/RecordsJSON.h"
#include "core/text/UTF8.h"
#include "export/ScriptEscaper.h"
#include "tests/export/HostileText.h"
#include "tests/export/SampleMessages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillbook {
namespace {

struct EscapeCase {
    const char* name;
    std::string json;
    std::string script;
};

class EscapeForScript : public testing::TestWithParam<EscapeCase> {};

TEST_P(EscapeForScript, escapesFiveCharacters) {
    EXPECT_EQ(escapeForScript(GetParam().json), GetParam().script);
}

INSTANTIATE_TEST_SUITE_P(
    Table, EscapeForScript,
    testing::Values(EscapeCase{"empty", "", ""}, EscapeCase{"plain", "{\"a\" : 1}", "{\"a\" : 1}"},
                    EscapeCase{"ampersand", "&", "\\u0026"}, EscapeCase{"lessThan", "<", "\\u003C"},
                    EscapeCase{"greaterThan", ">", "\\u003E"},
                    EscapeCase{"lineSeparator", "\u2028", "\\u2028"},
                    EscapeCase{"paragraphSeparator", "\u2029", "\\u2029"},
                    EscapeCase{"theirNeighbours", "\u2027\u202A\u20A8\u2128é", "\u2027\u202A\u20A8\u2128é"},
                    EscapeCase{"separatorsInARow", "\u2028\u2029\u2028x", "\\u2028\\u2029\\u2028x"},
                    EscapeCase{"allInARow", "a&<>\u2028\u2029b", "a\\u0026\\u003C\\u003E\\u2028\\u2029b"},
                    EscapeCase{"endOfAScript", "\"</script>\"", "\"\\u003C/script\\u003E\""},
                    EscapeCase{"quotesAndBackslashes", "\"\\\"'\\\\\"", "\"\\\"'\\\\\""},
                    EscapeCase{"pairAboveTheBMP", "\U0001F600<", "\U0001F600\\u003C"},
                    EscapeCase{"cutOffAtTheEnd", "a\xE2\x80", "a\uFFFD"},
                    EscapeCase{"illFormedWithin", "a\xE2\x80<\xFFz", "a\uFFFD\\u003C\uFFFDz"},
                    EscapeCase{"surrogate", "\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
                    EscapeCase{"nul", std::string("a\0<", 3), std::string("a\0\\u003C", 8)}),
    [](const auto& each) { return std::string(each.param.name); });

std::string escapedInPieces(std::string_view text, const std::vector<std::size_t>& lengths) {
    ScriptEscaper escaper;
    std::string script;
    for (const std::size_t length : lengths) {
        escaper.append(script, text.substr(0, length));
        text.remove_prefix(std::min(length, text.size()));
    }
    escaper.append(script, text);
    escaper.finish(script);
    return script;
}

TEST(ScriptEscaper, givesTheSameForACutAtAnyPlace) {
    const std::string text = "a\u2028é<\U0001F600\u2029&\xE2\x80\xE2\x80\xA8\xF0\x9F\x98\xC3";
    const std::string whole = escapeForScript(text);
    for (std::size_t first = 0; first <= text.size(); ++first) {
        for (std::size_t second = 0; first + second <= text.size(); ++second) {
            ASSERT_EQ(escapedInPieces(text, {first, second}), whole) << first << " and " << second;
        }
    }
}

TEST(ScriptEscaper, givesTheSameByteByByte) {
    const std::string text =
        "\u2028\u2029</script>\U0001F600\xED\xA0\x80\xF4\x90\x80\x80\x80\x80\x80\x80\xE2";
    EXPECT_EQ(escapedInPieces(text, std::vector<std::size_t>(text.size(), 1)), escapeForScript(text));
}

TEST(ScriptEscaper, givesTheSameForRandomBytesInRandomPieces) {
    test::HostileText random(3);
    constexpr std::string_view bytes = "\xE2\x80\xA8\xA9\xF0\x9F\x98\xED\xC3<&a\xFF\xE0";
    for (int round = 0; round < 3'000; ++round) {
        std::string text;
        for (std::size_t count = random.below(24); count > 0; --count)
            text += bytes[random.below(bytes.size())];
        std::vector<std::size_t> lengths(random.below(10));
        for (std::size_t& length : lengths)
            length = random.below(5);
        const std::string script = escapedInPieces(text, lengths);
        ASSERT_EQ(script, escapeForScript(text));
        ASSERT_EQ(script, escapeForScript(repairedUTF8(text)));
        ASSERT_TRUE(isValidUTF8(script));
    }
}

TEST(ScriptEscaperProperty, leavesTheValueAsItIs) {
    test::HostileText texts(4);
    for (int round = 0; round < 500; ++round) {
        ArchiveConversation record = test::conversation({test::message(texts.next(), texts.next(40))});
        record.title = texts.next();
        const std::string script = escapeForScript(jsonText(record));
        ASSERT_EQ(recordFromJSON<ArchiveConversation>(script), record);
        ASSERT_EQ(script.find_first_of("<>&"), std::string::npos);
        ASSERT_EQ(script.find("\u2028"), std::string::npos);
        ASSERT_EQ(script.find("\u2029"), std::string::npos);
    }
}

TEST(ScriptEscaper, canBeUsedAgainAfterItsEnd) {
    ScriptEscaper escaper;
    std::string script;
    escaper.append(script, "a\xE2");
    escaper.finish(script);
    escaper.append(script, "\x80\xA8");
    escaper.finish(script);
    EXPECT_EQ(script, "a\uFFFD\uFFFD\uFFFD");
}

} // namespace
} // namespace quillbook
