#include "core/records/Cancellation.h"
#include "export/ArchiveManifest.h"
#include "export/JSONFile.h"
#include "platform/FileError.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <random>

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> paths(const fs::path& root) {
    std::vector<std::string> paths;
    for (const ManifestFile& file : makeManifestFiles(root, {}))
        paths.push_back(file.path);
    return paths;
}

ArchiveManifest smallManifest() {
    return ArchiveManifest{
        .conversationTitle = "Zoë & Ana/b",
        .sourceChatID = SourceID{"chat-7"},
        .generatedAt = Date::fromUnixSeconds(1'714'566'896),
        .sourceMessageCount = 12,
        .availableMessageCount = 11,
        .messageCount = 11,
        .attachmentRecordCount = 2,
        .copiedAttachmentCount = 1,
        .missingAttachmentCount = 1,
        .warnings = {ArchiveWarning{.id = "attachment-missing-a2",
                                    .code = "attachment_missing",
                                    .summary = "Attachment b.jpg was missing.",
                                    .sourceID = SourceID{"a2"}}},
        .files = {ManifestFile{.path = "attachments/a.jpg", .byteSize = 3, .sha256 = "ba78"}},
    };
}

constexpr const char* smallManifestText = R"({
  "attachmentRecordCount" : 2,
  "availableMessageCount" : 11,
  "conversationTitle" : "Zoë & Ana/b",
  "copiedAttachmentCount" : 1,
  "files" : [
    {
      "byteSize" : 3,
      "path" : "attachments/a.jpg",
      "sha256" : "ba78"
    }
  ],
  "generatedAt" : "2024-05-01T12:34:56Z",
  "messageCount" : 11,
  "missingAttachmentCount" : 1,
  "schemaVersion" : 1,
  "sourceChatID" : "chat-7",
  "sourceMessageCount" : 12,
  "warnings" : [
    {
      "code" : "attachment_missing",
      "id" : "attachment-missing-a2",
      "sourceID" : "a2",
      "summary" : "Attachment b.jpg was missing."
    }
  ]
})";

TEST(ArchiveManifestJSON, standsInTheFileAsItAlwaysDid) {
    const TemporaryFolder folder;
    writeJSONFile(folder / "manifest.json", smallManifest());
    EXPECT_EQ(test::readFile(folder / "manifest.json"), smallManifestText);
}

TEST(ArchiveManifestJSON, readsBackEqual) {
    EXPECT_EQ(recordFromJSON<ArchiveManifest>(smallManifestText), smallManifest());
}

TEST(ArchiveManifestJSON, passesOverUnknownKeys) {
    std::string text = smallManifestText;
    text.replace(0, 1, R"({"aFieldOfTomorrow": [1],)");
    EXPECT_EQ(recordFromJSON<ArchiveManifest>(text), smallManifest());
}

class RequiredManifestKey : public testing::TestWithParam<const char*> {};

TEST_P(RequiredManifestKey, failsTheReadingWhereItIsAbsent) {
    std::string text = smallManifestText;
    const std::string key = std::string("\"") + GetParam() + '"';
    text.replace(text.find(key), key.size(), "\"somethingElse\"");
    EXPECT_THROW(recordFromJSON<ArchiveManifest>(text), JSONDecodingError);
}

INSTANTIATE_TEST_SUITE_P(Table, RequiredManifestKey,
                         testing::Values("attachmentRecordCount", "availableMessageCount",
                                         "conversationTitle", "copiedAttachmentCount", "files", "generatedAt",
                                         "messageCount", "missingAttachmentCount", "schemaVersion",
                                         "sourceChatID", "sourceMessageCount", "warnings", "byteSize", "path",
                                         "sha256"));

TEST(ArchiveManifestJSON, isNotReadWithABadDate) {
    std::string text = smallManifestText;
    text.replace(text.find("2024-05-01T"), 11, "2024-13-01T");
    EXPECT_THROW(recordFromJSON<ArchiveManifest>(text), JSONDecodingError);
}

TEST(MakeManifestFiles, givesPathSizeAndDigest) {
    const TemporaryFolder folder;
    folder.write("attachments/a.txt", "abc");
    EXPECT_THAT(makeManifestFiles(folder.path(), {}),
                ElementsAre(ManifestFile{
                    .path = "attachments/a.txt",
                    .byteSize = 3,
                    .sha256 = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"}));
}

TEST(MakeManifestFiles, givesAnEmptyFileTheDigestOfNothing) {
    const TemporaryFolder folder;
    folder.write("empty", "");
    EXPECT_THAT(makeManifestFiles(folder.path(), {}),
                ElementsAre(ManifestFile{
                    .path = "empty",
                    .byteSize = 0,
                    .sha256 = "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"}));
}

TEST(MakeManifestFiles, sortsCapitalsBeforeSmallLetters) {
    const TemporaryFolder folder;
    for (const char* name : {"index.html", "assets/avatars/a.png", "Open Album.html"})
        folder.write(name, "x");
    EXPECT_THAT(paths(folder.path()), ElementsAre("Open Album.html", "assets/avatars/a.png", "index.html"));
}

TEST(MakeManifestFiles, sortsByUnicodeScalarsNotByUTF16) {
    const TemporaryFolder folder;
    folder.write("\U0001F600", "x"); // in UTF-16 its first unit is smaller than that of the other
    folder.write("\uFF21", "x");
    EXPECT_THAT(paths(folder.path()), ElementsAre("\uFF21", "\U0001F600"));
}

TEST(MakeManifestFiles, sortsWholePathsNotFolderByFolder) {
    const TemporaryFolder folder;
    for (const char* name : {"a/b", "a-b", "a0"})
        folder.write(name, "x");
    EXPECT_THAT(paths(folder.path()), ElementsAre("a-b", "a/b", "a0"));
}

TEST(MakeManifestFiles, keepsNonASCIILettersAndBlanksAsTheyStand) {
    const TemporaryFolder folder;
    folder.write("attachments/Grüße 100%.jpg", "x");
    EXPECT_THAT(paths(folder.path()), ElementsAre("attachments/Grüße 100%.jpg"));
}

TEST(MakeManifestFiles, passesOverHiddenFilesAndWhatHiddenFoldersHold) {
    const TemporaryFolder folder;
    folder.write(".DS_Store", "x");
    folder.write("attachments/.hidden.jpg", "x");
    folder.write(".git/visible.txt", "x");
    EXPECT_THAT(paths(folder.path()), IsEmpty());
}

TEST(MakeManifestFiles, passesOverManifestsAtAnyDepth) {
    const TemporaryFolder folder;
    folder.write("manifest.json", "{}");
    folder.write("attachments/manifest.json", "{}");
    folder.write("attachments/manifest.json.txt", "x");
    EXPECT_THAT(paths(folder.path()), ElementsAre("attachments/manifest.json.txt"));
}

TEST(MakeManifestFiles, passesOverSymbolicLinksToFilesFoldersAndNothing) {
    const TemporaryFolder folder;
    folder.write("outside/file", "x");
    fs::create_directory(folder / "album");
    fs::create_symlink(folder / "outside/file", folder / "album/toFile");
    fs::create_directory_symlink(folder / "outside", folder / "album/toFolder");
    fs::create_symlink("nowhere", folder / "album/toNothing");
    fs::create_directory_symlink(".", folder / "album/toItself");
    EXPECT_THAT(paths(folder / "album"), IsEmpty());
}

TEST(MakeManifestFiles, passesOverPipesWithoutWaiting) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_THAT(paths(folder.path()), IsEmpty());
}

TEST(MakeManifestFiles, measuresPathsFromTheFolderBehindALink) {
    const TemporaryFolder folder;
    folder.write("real/a/b.txt", "x");
    fs::create_directory_symlink("real", folder / "link");
    EXPECT_THAT(paths(folder / "link"), ElementsAre("a/b.txt"));
}

TEST(MakeManifestFiles, isEmptyForAFolderThatIsAbsent) {
    const TemporaryFolder folder;
    EXPECT_THAT(paths(folder / "absent"), IsEmpty());
}

TEST(MakeManifestFiles, reachesTheBottomOfADeepTree) {
    const TemporaryFolder folder;
    fs::path deep;
    for (int level = 0; level < 900; ++level)
        deep /= "d";
    folder.write((deep / "f").string(), "x");
    EXPECT_THAT(paths(folder.path()), ElementsAre((deep / "f").string()));
}

TEST(MakeManifestFiles, refusesANameThatNoManifestCouldHold) {
    const TemporaryFolder folder;
    folder.write("broken\xFF.jpg", "x");
    EXPECT_THROW(makeManifestFiles(folder.path(), {}), FileError);
}

TEST(MakeManifestFiles, stopsAtTheFirstEntryOnceStopped) {
    const TemporaryFolder folder;
    folder.write("empty", "");
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(makeManifestFiles(folder.path(), stop.get_token()), CancellationError);
}

TEST(MakeManifestFiles, failsForAFileThatCannotBeRead) {
    const TemporaryFolder folder;
    fs::permissions(folder.path(), fs::perms(0755));
    fs::permissions(folder.write("locked", "x"), fs::perms::none);
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  if (!test::becomeOrdinaryUser()) return "could not change the user";
                  try {
                      makeManifestFiles(folder.path(), {});
                  } catch (const FileError&) {
                      return "";
                  }
                  return "no error";
              }),
              "");
}

TEST(MakeManifestFiles, leavesOutWhatStandsInAFolderThatCannotBeListed) {
    const TemporaryFolder folder;
    fs::permissions(folder.path(), fs::perms(0755));
    folder.write("a", "x");
    folder.write("locked/b", "x");
    fs::permissions(folder / "locked", fs::perms::none);
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  if (!test::becomeOrdinaryUser()) return "could not change the user";
                  return paths(folder.path()) == std::vector<std::string>{"a"} ? "" : "other files";
              }),
              "");
    fs::permissions(folder / "locked", fs::perms::owner_all);
}

/// What another program prints on its standard output.
std::string outputOf(const std::string& command) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    std::string output;
    for (int character = 0; (character = std::fgetc(pipe.get())) != EOF;)
        output += static_cast<char>(character);
    return output;
}

TEST(MakeManifestFiles, agreesWithSha256sum) {
    const TemporaryFolder folder;
    std::mt19937 random(20'240'501);
    for (int index = 0; index < 40; ++index) {
        std::string contents(random() % 3'000'000, '\0');
        for (char& byte : contents)
            byte = static_cast<char>(random());
        folder.write("album/sub " + std::to_string(index % 3) + "/Größe-" + std::to_string(index), contents);
    }
    std::string expected;
    for (const ManifestFile& file : makeManifestFiles(folder / "album", {}))
        expected += file.sha256 + "  " + file.path + '\n';
    const std::string command = "cd '" + (folder / "album").string() +
                                "' && find . -type f -printf '%P\\0' | LC_ALL=C sort -z | xargs -0 sha256sum";
    EXPECT_EQ(outputOf(command), expected);
}

} // namespace
} // namespace quillbook
