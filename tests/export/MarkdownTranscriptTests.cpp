#include "export/MarkdownTranscript.h"
#include "platform/FileError.h"
#include "tests/export/HostileText.h"
#include "tests/export/SampleMessages.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillbook {
namespace {

using test::attachment;
using test::conversation;
using test::message;
using test::messageFrom;
using test::participant;
using test::reaction;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const DateText& berlin() {
    static const DateText dates("de_DE.UTF-8", "Europe/Berlin");
    return dates;
}

std::string markdown(const ArchiveConversation& record, const DateText& dates = berlin()) {
    const test::TemporaryFolder folder;
    writeMarkdownTranscript(record, folder / "transcript.md", dates);
    return test::readFile(folder / "transcript.md");
}

/// What stands behind the head.
std::string blocks(const ArchiveConversation& record, const DateText& dates = berlin()) {
    const std::string text = markdown(record, dates);
    return text.substr(text.find("\n\n", text.find("- Participants: ")) + 2);
}

/// What stands behind the heading of a lone message's sender.
std::string body(const ArchiveMessage& record) {
    const std::string text = blocks(conversation({record}));
    return text.substr(text.find("**\n") + 3);
}

std::string replacingAll(std::string text, const std::string& from, const std::string& to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

const ArchiveParticipant alma = participant("+15550100", "Alma Birkeland");
const ArchiveParticipant bo = participant("bo_b@example.org");

TEST(MarkdownTranscript, writesAConversationLineByLine) {
    ArchiveMessage first =
        messageFrom(alma, "1", "Kommst du *heute*?\nEs gibt [Suppe].", "2026-11-15T18:48:57Z");
    first.reactions = {reaction(ReactionKind::loved), reaction(ReactionKind::liked, true)};
    ArchiveMessage second = message("2", "Ja! C:\\suppe", "2026-11-15T18:50:00Z");
    second.replyToGUID = first.guid;
    second.editedAt = test::dateAt("2026-11-15T18:51:00Z");
    ArchiveMessage third = messageFrom(bo, "3", std::nullopt, "2026-11-16T07:02:00Z");
    third.attachments = {attachment("a_b [1].png", "attachments/a b.png"), attachment("ton.caf")};
    third.replyToGUID = "guid-gone";
    const ArchiveMessage fourth = message("4", std::nullopt, "2026-11-16T07:03:00Z");
    const ArchiveMessage fifth = messageFrom(participant("+15550199"), "5", "Hallo", "2026-11-16T07:04:00Z");

    EXPECT_EQ(markdown(conversation({first, second, third, fourth, fifth}, {alma, bo})),
              "# Alma Birkeland\n"
              "\n"
              "- Backed up: 24. Dezember 2026 um 18:05\n"
              "- Messages: 5\n"
              "- Participants: Alma Birkeland, bo\\_b@example.org\n"
              "\n"
              "## 15. November 2026\n"
              "\n"
              "**Alma Birkeland — 19:48**\n"
              "Kommst du \\*heute\\*?\n"
              "Es gibt \\[Suppe\\].\n"
              "\n"
              "_Reaction: loved_\n"
              "\n"
              "**Me — 19:50**\n"
              "Ja! C:\\\\suppe\n"
              "\n"
              "_Reply to Alma Birkeland at 19:48_\n"
              "\n"
              "_Edited_\n"
              "\n"
              "## 16. November 2026\n"
              "\n"
              "**bo\\_b@example.org — 08:02**\n"
              "_Reply to an earlier message_\n"
              "\n"
              "[a\\_b \\[1\\].png](attachments/a%20b.png)\n"
              "\n"
              "_Missing attachment: ton.caf_\n"
              "\n"
              "**Me — 08:03**\n"
              "**Unknown — 08:04**\n"
              "Hallo\n"
              "\n");
}

TEST(MarkdownTranscript, endsBehindTheHeadWhenThereAreNoMessages) {
    EXPECT_EQ(markdown(conversation({}, {alma})),
              "# Alma Birkeland\n\n- Backed up: 24. Dezember 2026 um 18:05\n"
              "- Messages: 0\n- Participants: Alma Birkeland\n\n");
}

TEST(MarkdownTranscript, keepsTheParticipantsLineWhenThereAreNone) {
    EXPECT_THAT(markdown(conversation()), EndsWith("\n- Messages: 0\n- Participants: \n\n"));
}

TEST(MarkdownTranscript, escapesTheTitle) {
    ArchiveConversation record = conversation();
    record.title = "*Us* [two]";
    EXPECT_THAT(markdown(record), StartsWith("# \\*Us\\* \\[two\\]\n\n"));
}

TEST(MarkdownTranscript, showsTimesAsTheUserReadsThem) {
    const DateText newYork("en_US.UTF-8", "America/New_York");
    // Newer locale data parts the time from AM and PM by a narrow no-break space.
    const std::string text = replacingAll(
        markdown(conversation({message("1", "Hi", "2026-11-16T00:48:57Z")}), newYork), "\u202F", " ");
    EXPECT_THAT(text, HasSubstr("- Backed up: December 24, 2026 at 12:05 PM\n"));
    EXPECT_THAT(text, HasSubstr("## November 15, 2026\n\n**Me — 7:48 PM**\nHi\n"));
}

TEST(MarkdownTranscript, takesTheUsersOwnDatesByDefault) {
    const test::TemporaryFolder folder;
    const ArchiveConversation record = conversation({message("1", "Hi")});
    writeMarkdownTranscript(record, folder / "transcript.md");
    EXPECT_EQ(test::readFile(folder / "transcript.md"), markdown(record, DateText::user()));
}

TEST(MarkdownTranscript, givesTwoMessagesOfADayOneHeading) {
    EXPECT_EQ(blocks(conversation(
                  {message("1", "a", "2026-11-15T10:00:00Z"), message("2", "b", "2026-11-15T11:00:00Z")})),
              "## 15. November 2026\n\n**Me — 11:00**\na\n\n**Me — 12:00**\nb\n\n");
}

TEST(MarkdownTranscript, partsDaysInTheUsersTimeZone) {
    const auto record =
        conversation({message("1", "a", "2026-11-15T22:59:00Z"), message("2", "b", "2026-11-15T23:00:00Z")});
    EXPECT_EQ(blocks(record),
              "## 15. November 2026\n\n**Me — 23:59**\na\n\n## 16. November 2026\n\n**Me — 00:00**\nb\n\n");
}

TEST(MarkdownTranscript, repeatsADayHeadingWhenTheFileIsNotInDateOrder) {
    const auto record =
        conversation({message("1", "a", "2026-11-15T10:00:00Z"), message("2", "b", "2026-11-16T10:00:00Z"),
                      message("3", "c", "2026-11-15T10:00:00Z")});
    EXPECT_EQ(blocks(record),
              "## 15. November 2026\n\n**Me — 11:00**\na\n\n## 16. November 2026\n\n**Me — 11:00**\nb\n\n"
              "## 15. November 2026\n\n**Me — 11:00**\nc\n\n");
}

TEST(MarkdownTranscript, takesTheAddressOfAParticipantWithoutName) {
    EXPECT_THAT(blocks(conversation({messageFrom(bo, "1")}, {bo})), HasSubstr("**bo\\_b@example.org — "));
}

TEST(MarkdownTranscript, keepsTheFirstOfTwoParticipantsWithOneID) {
    ArchiveParticipant other = alma;
    other.displayName = "Someone Else";
    EXPECT_THAT(blocks(conversation({messageFrom(alma, "1")}, {alma, other})),
                HasSubstr("**Alma Birkeland — "));
}

TEST(MarkdownTranscript, looksUpAnAbsentSenderAsTheEmptyText) {
    ArchiveParticipant nobody = participant("", "Nobody in Particular");
    nobody.id = "";
    ArchiveMessage record = message("1");
    record.isFromMe = false;
    EXPECT_THAT(blocks(conversation({record}, {nobody})), HasSubstr("**Nobody in Particular — "));
    EXPECT_THAT(blocks(conversation({record}, {alma})), HasSubstr("**Unknown — "));
}

TEST(MarkdownTranscript, writesNoParagraphForAnEmptyText) {
    EXPECT_EQ(body(message("1", "")), "");
}

TEST(MarkdownTranscript, keepsLineBreaksWithinAText) {
    EXPECT_EQ(body(message("1", "a\nb\r\nc")), "a\nb\r\nc\n\n");
}

TEST(MarkdownTranscript, leavesAngleBracketsAndHashesAlone) {
    EXPECT_EQ(body(message("1", "# <b>")), "# <b>\n\n");
}

TEST(MarkdownTranscript, resolvesAReplyToALaterMessage) {
    ArchiveMessage reply = message("1", "Ja", "2026-11-15T18:00:00Z");
    reply.replyToGUID = "guid-2";
    const auto record = conversation({reply, messageFrom(alma, "2", "?", "2026-11-15T18:30:00Z")}, {alma});
    EXPECT_THAT(blocks(record), HasSubstr("\n_Reply to Alma Birkeland at 19:30_\n\n"));
}

TEST(MarkdownTranscript, resolvesAReplyToTheLastMessageOfAGUID) {
    ArchiveMessage again = messageFrom(bo, "2", "b", "2026-11-15T18:30:00Z");
    again.guid = "guid-1";
    ArchiveMessage reply = message("3", "c", "2026-11-15T18:40:00Z");
    reply.replyToGUID = "guid-1";
    const auto record =
        conversation({messageFrom(alma, "1", "a", "2026-11-15T18:20:00Z"), again, reply}, {alma, bo});
    EXPECT_THAT(blocks(record), HasSubstr("_Reply to bo\\_b@example.org at 19:30_"));
}

TEST(MarkdownTranscript, resolvesAReplyToOneselfAndToAnUnknownSender) {
    ArchiveMessage own = message("1", "a", "2026-11-15T18:20:00Z");
    ArchiveMessage foreign = messageFrom(alma, "2", "b", "2026-11-15T18:21:00Z");
    own.replyToGUID = "guid-2";
    foreign.replyToGUID = "guid-1";
    const std::string text = blocks(conversation({own, foreign}));
    EXPECT_THAT(text, HasSubstr("_Reply to Unknown at 19:21_"));
    EXPECT_THAT(text, HasSubstr("_Reply to Me at 19:20_"));
}

TEST(MarkdownTranscript, namesNoSenderForAReplyToWhatIsNotThere) {
    ArchiveMessage reply = message("1", "c");
    reply.replyToGUID = "guid-gone";
    EXPECT_EQ(body(reply), "c\n\n_Reply to an earlier message_\n\n");
}

TEST(MarkdownTranscript, namesEveryKindOfReaction) {
    ArchiveMessage record = message("1");
    using enum ReactionKind;
    for (const auto kind : {loved, liked, disliked, laughed, emphasized, questioned, custom, unknown}) {
        record.reactions.push_back(reaction(kind));
    }
    EXPECT_EQ(body(record),
              "_Reaction: loved_\n\n_Reaction: liked_\n\n_Reaction: disliked_\n\n_Reaction: laughed_\n\n"
              "_Reaction: emphasized_\n\n_Reaction: questioned_\n\n_Reaction: custom_\n\n"
              "_Reaction: unknown_\n\n");
}

TEST(MarkdownTranscript, leavesRemovedReactionsOut) {
    ArchiveMessage record = message("1", "a");
    record.reactions = {reaction(ReactionKind::loved, true)};
    EXPECT_EQ(body(record), "a\n\n");
}

TEST(MarkdownTranscript, keepsAttachmentsInTheirOrder) {
    ArchiveMessage record = message("1");
    record.attachments = {attachment("gone_1"), attachment("b", "attachments/b"), attachment("gone2")};
    EXPECT_EQ(body(record),
              "_Missing attachment: gone\\_1_\n\n[b](attachments/b)\n\n_Missing attachment: gone2_\n\n");
}

TEST(MarkdownTranscript, leavesToTheJSONRecordWhatWasNotSaid) {
    ArchiveMessage record = message("1", "a");
    record.subject = "Secret subject";
    record.retractedAt = record.date;
    record.payloadState = MessagePayloadState::unsupported;
    EXPECT_EQ(body(record), "a\n\n");
}

TEST(MarkdownTranscript, hasNoByteOrderMark) {
    EXPECT_EQ(markdown(conversation()).front(), '#');
}

TEST(MarkdownTranscript, replacesALongerFile) {
    const test::TemporaryFolder folder;
    const auto file = folder.write("transcript.md", std::string(1'000, 'x'));
    writeMarkdownTranscript(conversation(), file, berlin());
    EXPECT_EQ(test::readFile(file), markdown(conversation()));
}

TEST(MarkdownTranscript, survivesIllFormedTexts) {
    EXPECT_EQ(body(message("1", "\xE2\x80\xFF_\xC0")), "\xE2\x80\xFF\\_\xC0\n\n");
}

TEST(MarkdownTranscript, writesLargeConversationsWhole) {
    std::vector<ArchiveMessage> messages;
    std::string expected = "## 15. November 2026\n\n";
    for (int number = 0; number < 20'000; ++number) {
        messages.push_back(message(std::to_string(number), "Nachricht " + std::to_string(number)));
        expected += "**Me — 20:48**\nNachricht " + std::to_string(number) + "\n\n";
    }
    EXPECT_EQ(blocks(conversation(messages)), expected);
}

TEST(MarkdownTranscriptFailure, reachesTheCallerWhenTheFileCannotBeMade) {
    const test::TemporaryFolder folder;
    EXPECT_THROW(writeMarkdownTranscript(conversation(), folder / "absent/transcript.md"), FileError);
    EXPECT_THROW(writeMarkdownTranscript(conversation(), folder.path()), FileError);
}

TEST(MarkdownTranscriptFailure, reachesTheCallerWhenTheDiskIsFull) {
    try {
        writeMarkdownTranscript(conversation({message("1", "a")}), "/dev/full");
        FAIL() << "nothing was thrown";
    } catch (const FileError& error) {
        EXPECT_EQ(error.action, FileError::Action::write);
        EXPECT_EQ(error.code, std::errc::no_space_on_device);
    }
}

TEST(MarkdownTranscriptFailure, leavesWhatWasWrittenUntilThen) {
    const test::TemporaryFolder folder;
    const auto record =
        conversation({message("1", std::string(200'000, 'a')), message("2", std::string(200'000, 'b'))});
    {
        const test::FileSizeLimit limit(300'000);
        EXPECT_THROW(writeMarkdownTranscript(record, folder / "transcript.md", berlin()), FileError);
    }
    EXPECT_EQ(test::readFile(folder / "transcript.md"), markdown(record).substr(0, 300'000));
}

struct EscapeCase {
    const char* name;
    std::string_view text;
    std::string_view expected;
};

class EscapeMarkdown : public testing::TestWithParam<EscapeCase> {};

TEST_P(EscapeMarkdown, putsABackslashBeforeActiveCharacters) {
    EXPECT_EQ(escapeMarkdown(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, EscapeMarkdown,
                         testing::Values(EscapeCase{"empty", "", ""}, EscapeCase{"plain", "plain", "plain"},
                                         EscapeCase{"backslash", "\\", "\\\\"},
                                         EscapeCase{"backtick", "`", "\\`"},
                                         EscapeCase{"asterisk", "*", "\\*"},
                                         EscapeCase{"underscore", "_", "\\_"},
                                         EscapeCase{"brackets", "[a]", "\\[a\\]"},
                                         EscapeCase{"backslashBeforeAsterisk", "\\*", "\\\\\\*"},
                                         EscapeCase{"others", "#<>(){}~!|&\n", "#<>(){}~!|&\n"},
                                         EscapeCase{"otherScripts", "é_日本", "é\\_日本"}),
                         [](const auto& each) { return std::string(each.param.name); });

TEST(EscapeMarkdownProperty, equalsSixReplacementsInARow) {
    test::HostileText texts(1);
    for (int round = 0; round < 2'000; ++round) {
        const std::string text = texts.next();
        std::string expected = text;
        for (const std::string active : {"\\", "`", "*", "_", "[", "]"}) {
            expected = replacingAll(expected, active, "\\" + active);
        }
        ASSERT_EQ(escapeMarkdown(text), expected);
    }
}

struct LinkCase {
    const char* name;
    std::string_view path;
    std::string_view link;
};

class AttachmentLink : public testing::TestWithParam<LinkCase> {};

TEST_P(AttachmentLink, isPercentEncoded) {
    ArchiveMessage record = message("1");
    record.attachments = {attachment("n", std::string(GetParam().path))};
    EXPECT_EQ(body(record), "[n](" + std::string(GetParam().link) + ")\n\n");
}

INSTANTIATE_TEST_SUITE_P(
    Table, AttachmentLink,
    testing::Values(LinkCase{"unreserved", "attachments/AZaz09-._~", "attachments/AZaz09-._~"},
                    LinkCase{"blank", "attachments/a b", "attachments/a%20b"},
                    LinkCase{"parentheses", "attachments/a(1)", "attachments/a%281%29"},
                    LinkCase{"percent", "attachments/100%", "attachments/100%25"},
                    LinkCase{"questionAndHash", "attachments/?#", "attachments/%3F%23"},
                    LinkCase{"otherScripts", "attachments/é日", "attachments/%C3%A9%E6%97%A5"},
                    LinkCase{"reserved", "attachments/!*'+,;=:@&$[]",
                             "attachments/%21%2A%27%2B%2C%3B%3D%3A%40%26%24%5B%5D"},
                    LinkCase{"lineBreak", "attachments/a\nb", "attachments/a%0Ab"}),
    [](const auto& each) { return std::string(each.param.name); });

} // namespace
} // namespace quillbook
