#include "core/text/GraphemeClusters.h"
#include "export/CSVTranscript.h"
#include "export/TranscriptBuffer.h"
#include "platform/FileError.h"
#include "tests/export/HostileText.h"
#include "tests/export/ParsedCSV.h"
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
using testing::ElementsAre;

const std::string header =
    "\xEF\xBB\xBFmessage_id,guid,timestamp,direction,sender,service,text,reply_to,edited_at,"
    "reactions,attachment_count,attachments\r\n";

std::string csv(const ArchiveConversation& record) {
    const test::TemporaryFolder folder;
    writeCSVTranscript(record, folder / "transcript.csv");
    return test::readFile(folder / "transcript.csv");
}

/// The fields of the rows behind the header.
std::vector<std::vector<std::string>> parsed(const ArchiveConversation& record) {
    const test::TemporaryFolder folder;
    writeCSVTranscript(record, folder / "transcript.csv");
    auto rows = test::rowsReadByPython(folder / "transcript.csv");
    rows.erase(rows.begin());
    return rows;
}

std::string row(const ArchiveMessage& record, const std::vector<ArchiveParticipant>& participants = {}) {
    return csv(conversation({record}, participants)).substr(header.size());
}

std::string cell(const std::string& field) {
    const test::TemporaryFolder folder;
    TranscriptBuffer buffer(folder / "row.csv");
    const std::string_view fields[] = {field};
    writeCSVRow(fields, buffer);
    buffer.finish();
    return test::readFile(folder / "row.csv");
}

const ArchiveParticipant alma = participant("+15550100", "Alma Birkeland");

TEST(CSVTranscript, writesAConversationRowByRow) {
    ArchiveMessage first = messageFrom(alma, "1", "Soup, \"hot\"\nand bread");
    first.service = "iMessage";
    first.date.secondsSinceReferenceDate += 0.123;
    first.reactions = {reaction(ReactionKind::loved), reaction(ReactionKind::disliked, true),
                       reaction(ReactionKind::liked)};
    ArchiveMessage second = message("2", "=1+1", "2026-11-15T19:50:00Z");
    second.replyToGUID = first.guid;
    second.editedAt = Date{second.date.secondsSinceReferenceDate + 1.5};
    second.attachments = {attachment("a", "attachments/a b.png"), attachment("gone"),
                          attachment("c", "attachments/é;1.png")};

    EXPECT_EQ(csv(conversation({first, second}, {alma})),
              header +
                  "1,guid-1,2026-11-15T19:48:57.123Z,incoming,Alma Birkeland,iMessage,"
                  "\"Soup, \"\"hot\"\"\nand bread\",,,loved;liked,0,\r\n"
                  "2,guid-2,2026-11-15T19:50:00.000Z,outgoing,Me,,'=1+1,guid-1,2026-11-15T19:50:01.500Z,,3,"
                  "attachments/a b.png;attachments/é;1.png\r\n");
}

TEST(CSVTranscript, hasTheHeaderAloneWhenThereAreNoMessages) {
    EXPECT_EQ(csv(conversation({}, {alma})), header);
}

TEST(CSVTranscript, cutsMillisecondsAndDoesNotRoundThem) {
    ArchiveMessage record = message("1");
    record.date.secondsSinceReferenceDate += 0.9996;
    EXPECT_THAT(row(record), testing::HasSubstr(",2026-11-15T19:48:57.999Z,"));
}

TEST(CSVTranscript, guardsGUIDsAndSendersToo) {
    ArchiveMessage record = messageFrom(participant("+15550100"), "1", "-5");
    record.guid = "@guid";
    EXPECT_EQ(row(record, {participant("+15550100")}),
              "1,'@guid,2026-11-15T19:48:57.000Z,incoming,'+15550100,,'-5,,,,0,\r\n");
}

TEST(CSVTranscript, callsASenderWhoIsNoParticipantUnknown) {
    EXPECT_EQ(row(messageFrom(alma, "1", "a")),
              "1,guid-1,2026-11-15T19:48:57.000Z,incoming,Unknown,,a,,,,0,\r\n");
}

TEST(CSVTranscript, keepsTheFirstOfTwoParticipantsWithOneID) {
    ArchiveParticipant other = alma;
    other.displayName = "Someone Else";
    EXPECT_THAT(row(messageFrom(alma, "1"), {alma, other}), testing::HasSubstr(",Alma Birkeland,"));
}

TEST(CSVTranscript, countsMissingAttachmentsButListsCopiedOnes) {
    ArchiveMessage record = message("1");
    record.attachments = {attachment("a"), attachment("b", "attachments/b"), attachment("c")};
    EXPECT_THAT(row(record), testing::EndsWith(",3,attachments/b\r\n"));
}

TEST(CSVTranscript, leavesRemovedReactionsOut) {
    ArchiveMessage record = message("1");
    record.reactions = {reaction(ReactionKind::loved, true)};
    EXPECT_THAT(row(record), testing::EndsWith(",Me,,,,,,0,\r\n"));
}

TEST(CSVTranscript, keepsATextOfSeveralLinesInOneCell) {
    const auto rows = parsed(conversation({message("1", "a\nb\r\nc\rd")}));
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0][6], "a\nb\r\nc\rd");
}

TEST(CSVTranscript, leavesToTheJSONRecordWhatWasNotSaid) {
    ArchiveMessage record = message("1", "a");
    record.subject = "Secret subject";
    record.retractedAt = record.date;
    record.payloadState = MessagePayloadState::unsupported;
    EXPECT_EQ(row(record), row(message("1", "a")));
}

TEST(CSVTranscript, replacesALongerFile) {
    const test::TemporaryFolder folder;
    const auto file = folder.write("transcript.csv", std::string(1'000, 'x'));
    writeCSVTranscript(conversation(), file);
    EXPECT_EQ(test::readFile(file), header);
}

struct CellCase {
    const char* name;
    std::string field;
    std::string expected;
};

class CSVCell : public testing::TestWithParam<CellCase> {};

TEST_P(CSVCell, isGuardedThenQuoted) {
    EXPECT_EQ(cell(GetParam().field), GetParam().expected + "\r\n");
}

INSTANTIATE_TEST_SUITE_P(
    Table, CSVCell,
    testing::Values(CellCase{"empty", "", ""}, CellCase{"plain", "plain", "plain"},
                    CellCase{"comma", "a,b", "\"a,b\""}, CellCase{"quote", "a\"b", "\"a\"\"b\""},
                    CellCase{"quotesAtBothEnds", "\"a\"", "\"\"\"a\"\"\""},
                    CellCase{"lineFeed", "a\nb", "\"a\nb\""}, CellCase{"carriageReturn", "a\rb", "\"a\rb\""},
                    CellCase{"blanksAtBothEnds", " a ", " a "}, CellCase{"semicolon", "a;b", "a;b"},
                    CellCase{"singleQuote", "'a", "'a"}, CellCase{"equals", "=1+1", "'=1+1"},
                    CellCase{"equalsAlone", "=", "'="}, CellCase{"plus", "+15550100", "'+15550100"},
                    CellCase{"minus", "-5", "'-5"}, CellCase{"at", "@SUM(A1)", "'@SUM(A1)"},
                    CellCase{"tab", "\t=1", "'\t=1"}, CellCase{"carriageReturnFirst", "\r=1", "\"'\r=1\""},
                    CellCase{"carriageReturnAlone", "\r", "\"'\r\""},
                    CellCase{"carriageReturnAndLineFeedFirst", "\r\n=1", "\"\r\n=1\""},
                    CellCase{"carriageReturnTwice", "\r\r\n", "\"'\r\r\n\""},
                    CellCase{"lineFeedFirst", "\n=1", "\"\n=1\""},
                    CellCase{"equalsWithCombiningMark", "=\u0301x", "=\u0301x"},
                    CellCase{"equalsWithJoiner", "=\u200Dx", "=\u200Dx"},
                    CellCase{"minusWithVariationSelector", "-\uFE0F", "-\uFE0F"},
                    CellCase{"tabBeforeCombiningMark", "\t\u0301", "'\t\u0301"},
                    CellCase{"equalsBeforeOtherScript", "=é", "'=é"}, CellCase{"blankFirst", " =1", " =1"},
                    CellCase{"guardStandsWithinTheQuotes", "=\"a\",b", "\"'=\"\"a\"\",b\""},
                    CellCase{"fullWidthEquals", "\uFF1D1", "\uFF1D1"},
                    CellCase{"illFormed", "=\xE2\x80", "'=\xE2\x80"},
                    CellCase{"nul", std::string("=\0", 2), std::string("'=\0", 3)}),
    [](const auto& each) { return std::string(each.param.name); });

TEST(CSVCell, ofManyCombiningMarksIsNotGuarded) {
    std::string field = "=";
    for (int count = 0; count < 100'000; ++count)
        field += "\u0301";
    EXPECT_EQ(cell(field), field + "\r\n");
}

/// The guard in its plain words, asked of the whole text.
std::string guarded(const std::string& field) {
    const std::string_view first = firstGrapheme(field);
    const bool isStart =
        first.size() == 1 && std::string_view("=+-@\t\r").find(first) != std::string_view::npos;
    return isStart ? "'" + field : field;
}

TEST(CSVTranscriptProperty, readsBackEqualInAnotherReader) {
    test::HostileText texts(2);
    ArchiveConversation record = conversation({}, {participant(texts.next(), texts.next())});
    std::vector<std::vector<std::string>> expected;
    for (int round = 0; round < 3'000; ++round) {
        ArchiveMessage next = messageFrom(record.participants[0], texts.next(), texts.next());
        next.guid = texts.next();
        next.service = texts.next();
        next.replyToGUID = texts.next();
        next.attachments = {attachment("a", texts.next() + "x")};
        expected.push_back({guarded(next.id.rawValue), guarded(next.guid), "2026-11-15T19:48:57.000Z",
                            "incoming", guarded(*record.participants[0].displayName), guarded(*next.service),
                            guarded(*next.text), guarded(*next.replyToGUID), "", "", "1",
                            guarded(*next.attachments[0].archivePath)});
        record.messages.push_back(std::move(next));
    }
    const auto rows = parsed(record);
    ASSERT_EQ(rows.size(), expected.size());
    for (std::size_t index = 0; index < rows.size(); ++index)
        ASSERT_EQ(rows[index], expected[index]) << index;
}

TEST(CSVTranscriptFailure, reachesTheCallerWhenTheFileCannotBeMade) {
    const test::TemporaryFolder folder;
    EXPECT_THROW(writeCSVTranscript(conversation(), folder / "absent/transcript.csv"), FileError);
    EXPECT_THROW(writeCSVTranscript(conversation(), folder.path()), FileError);
}

TEST(CSVTranscriptFailure, reachesTheCallerWhenTheDiskIsFull) {
    try {
        writeCSVTranscript(conversation(), "/dev/full");
        FAIL() << "nothing was thrown";
    } catch (const FileError& error) {
        EXPECT_EQ(error.action, FileError::Action::write);
        EXPECT_EQ(error.code, std::errc::no_space_on_device);
    }
}

TEST(CSVTranscriptFailure, leavesWhatWasWrittenUntilThen) {
    const test::TemporaryFolder folder;
    std::vector<ArchiveMessage> messages;
    for (int number = 0; number < 5'000; ++number)
        messages.push_back(message(std::to_string(number), "A text, quoted"));
    const auto record = conversation(messages);
    {
        const test::FileSizeLimit limit(100'000);
        EXPECT_THROW(writeCSVTranscript(record, folder / "transcript.csv"), FileError);
    }
    EXPECT_EQ(test::readFile(folder / "transcript.csv"), csv(record).substr(0, 100'000));
}

} // namespace
} // namespace quillbook
