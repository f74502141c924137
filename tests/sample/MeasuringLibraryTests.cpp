#include "tests/sample/LibraryUnderTest.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

namespace quillbook::sample {
namespace {

SampleReport write(const std::filesystem::path& home, std::int64_t messages, std::int64_t attachments,
                   bool isOneChat) {
    SampleOptions options;
    options.home = home;
    options.messageCount = messages;
    options.attachmentCount = attachments;
    options.isOneChat = isOneChat;
    return writeSampleLibrary(options);
}

/// Written once for the tests below.
struct LargeLibrary {
    quillbook::test::TemporaryFolder home;
    SampleReport report = write(home.path(), bulkMessageCount, 2'100, false);
};

const SampleReport& largeLibrary() {
    static const LargeLibrary library;
    return library.report;
}

TEST(MeasuringLibrary, hasOneChatForEvery250Messages) {
    EXPECT_EQ(largeLibrary().chatCount, 400);
    EXPECT_EQ(
        test::queryNumber(largeLibrary().database, "SELECT COUNT(DISTINCT chat_id) FROM chat_message_join"),
        400);
}

TEST(MeasuringLibrary, hasExactlyTheRowsAskedFor) {
    EXPECT_EQ(test::queryNumber(largeLibrary().database, "SELECT COUNT(*) FROM message"), bulkMessageCount);
    EXPECT_EQ(test::queryNumber(largeLibrary().database, "SELECT COUNT(*) FROM chat_message_join"),
              bulkMessageCount);
    EXPECT_EQ(test::queryNumber(largeLibrary().database, "SELECT COUNT(*) FROM attachment"), 2'100);
    EXPECT_EQ(largeLibrary().messageCount + largeLibrary().reactionCount, bulkMessageCount);
}

TEST(MeasuringLibrary, hasNoFilesBeyondTheLimit) {
    EXPECT_EQ(largeLibrary().attachmentsOnDisk, attachmentFileLimit);
    EXPECT_EQ(largeLibrary().attachmentsMissing, 100);
    EXPECT_EQ(test::filesBelow(largeLibrary().attachments).size(),
              static_cast<std::size_t>(attachmentFileLimit));
}

TEST(MeasuringLibrary, isASoundDatabase) {
    EXPECT_EQ(test::queryColumn(largeLibrary().database, "PRAGMA integrity_check"),
              std::vector<std::string>{"ok"});
}

TEST(MeasuringLibrary, writesOneChatWithAThirdOfItsBodiesAsTypedArchivesAlone) {
    const quillbook::test::TemporaryFolder home;
    const SampleReport report = write(home.path(), 6'000, 0, true);
    EXPECT_EQ(report.chatCount, 1);
    EXPECT_EQ(test::queryNumber(report.database, "SELECT COUNT(*) FROM chat_message_join WHERE chat_id = 1"),
              6'000);
    const std::int64_t archived = test::queryNumber(
        report.database, "SELECT COUNT(*) FROM message WHERE text IS NULL AND attributedBody IS NOT NULL");
    EXPECT_NEAR(static_cast<double>(archived), static_cast<double>(report.messageCount) / 3, 60);
}

TEST(MeasuringLibrary, leavesGapsOfOneToTenBetweenRowIDs) {
    const quillbook::test::TemporaryFolder home;
    const SampleReport report = write(home.path(), 2'000, 0, true);
    const std::string gaps = "(SELECT ROWID - LAG(ROWID, 1, 0) OVER (ORDER BY ROWID) AS gap FROM message)";
    EXPECT_EQ(test::queryNumber(report.database, "SELECT MIN(gap) FROM " + gaps), 1);
    EXPECT_EQ(test::queryNumber(report.database, "SELECT MAX(gap) FROM " + gaps), 10);
}

TEST(MeasuringLibrary, isTheSameEachTime) {
    const quillbook::test::TemporaryFolder one;
    const quillbook::test::TemporaryFolder other;
    write(one.path(), 3'000, 50, true);
    write(other.path(), 3'000, 50, true);
    EXPECT_EQ(test::filesBelow(one.path()), test::filesBelow(other.path()));
}

} // namespace
} // namespace quillbook::sample
