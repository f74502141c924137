#include "export/JSONFile.h"
#include "platform/FileError.h"
#include "tests/export/HostileText.h"
#include "tests/export/SampleMessages.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TemporaryFolder.h"

#include <iterator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillbook {
namespace {

using test::conversation;
using test::message;

std::string written(const ArchiveConversation& record) {
    const test::TemporaryFolder folder;
    writeJSONFile(folder / "transcript.json", record);
    return test::readFile(folder / "transcript.json");
}

std::ptrdiff_t entryCount(const std::filesystem::path& folder) {
    return std::distance(std::filesystem::directory_iterator(folder), {});
}

TEST(JSONFile, holdsTheRecordInTheSharedForm) {
    ArchiveMessage record = message("1", "a/b <c>");
    record.attachments = {test::attachment("b.jpg", "attachments/a/b.jpg")};
    EXPECT_EQ(written(conversation({record}, {test::participant("+15550100")})), R"({
  "generatedAt" : "2026-12-24T17:05:09Z",
  "guid" : "chat-7",
  "id" : "7",
  "messages" : [
    {
      "attachments" : [
        {
          "archivePath" : "attachments/a/b.jpg",
          "availability" : "available",
          "displayName" : "b.jpg",
          "id" : "attachment-of-b.jpg"
        }
      ],
      "date" : "2026-11-15T19:48:57Z",
      "guid" : "guid-1",
      "id" : "1",
      "isFromMe" : true,
      "payloadState" : "decoded",
      "reactions" : [],
      "text" : "a/b <c>"
    }
  ],
  "participants" : [
    {
      "address" : "+15550100",
      "id" : "participant-+15550100",
      "isMe" : false
    }
  ],
  "schemaVersion" : 1,
  "sourceMessageCount" : 1,
  "sourceSystemVersion" : "Debian GNU/Linux 12",
  "title" : "Alma Birkeland",
  "warnings" : []
})");
}

TEST(JSONFile, readsBackEqual) {
    test::HostileText texts(5);
    ArchiveConversation record = conversation({}, {test::participant(texts.next(), texts.next())});
    for (int round = 0; round < 2'000; ++round) {
        record.messages.push_back(message(texts.next(), texts.next(30)));
    }
    EXPECT_EQ(recordFromJSON<ArchiveConversation>(written(record)), record);
}

TEST(JSONFile, readsBackEqualWithoutMessages) {
    EXPECT_EQ(recordFromJSON<ArchiveConversation>(written(conversation())), conversation());
}

TEST(JSONFile, replacesWhatStandsThere) {
    const test::TemporaryFolder folder;
    const auto file = folder.write("transcript.json", std::string(100'000, 'x'));
    writeJSONFile(file, conversation());
    EXPECT_EQ(test::readFile(file), jsonText(conversation()));
    EXPECT_EQ(entryCount(folder.path()), 1);
}

TEST(JSONFile, leavesTheOldFileWhenAWriteFails) {
    const test::TemporaryFolder folder;
    const auto file = folder.write("transcript.json", "old");
    {
        const test::FileSizeLimit limit(100'000);
        EXPECT_THROW(writeJSONFile(file, conversation({message("1", std::string(300'000, 'a'))})), FileError);
    }
    EXPECT_EQ(test::readFile(file), "old");
    EXPECT_EQ(entryCount(folder.path()), 1);
}

TEST(JSONFile, leavesNothingWhenTheNameIsTakenByAFolder) {
    const test::TemporaryFolder folder;
    folder.write("transcript.json/inside", "");
    EXPECT_THROW(writeJSONFile(folder / "transcript.json", conversation()), FileError);
    EXPECT_EQ(entryCount(folder.path()), 1);
}

TEST(JSONFile, needsItsFolder) {
    const test::TemporaryFolder folder;
    EXPECT_THROW(writeJSONFile(folder / "absent/transcript.json", conversation()), FileError);
    EXPECT_EQ(entryCount(folder.path()), 0);
}

} // namespace
} // namespace quillbook
