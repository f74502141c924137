#include "core/records/Cancellation.h"
#include "export/ArchiveManifest.h"
#include "export/ExportCoordinator.h"
#include "export/FileHash.h"
#include "tests/export/ExportFixture.h"
#include "tests/support/ChildProcess.h"

#include <regex>

#include <gmock/gmock.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::attachment;
using test::conversationNamed;
using test::ExportFixture;
using test::message;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using Stage = ExportStage;

const ExportOptions everything{.includeJSON = true, .includeMarkdown = true, .includeCSV = true};

/// Three attachments in two messages: one that is there, one that the source does not find, one that cannot
/// be read.
struct MixedExport : ExportFixture {
    MixedExport()
        : ExportFixture(conversationNamed(
              "Ana & Ben",
              {message("m1", "hello", {attachment("a1", "one.jpg", "p1"), attachment("a2", "two.jpg", "p2")}),
               message("m2", "no attachment"), message("m3", "", {attachment("a3", "three.jpg", "p3")})})) {
        addFile("p1", "abc");
        loader->files["p3"] = folder / "Source"; // a folder has no contents to read
    }
};

ArchiveManifest manifestOf(const fs::path& album) {
    return recordFromJSON<ArchiveManifest>(test::readFile(album / "manifest.json"));
}

TEST(ExportReports, comeInOrderWithEverythingOn) {
    MixedExport fixture;
    fixture.options = everything;
    fixture.run();
    EXPECT_THAT(fixture.reports,
                ElementsAre(ExportProgress{Stage::preparing, 0, 1, "Preparing export"},
                            ExportProgress{Stage::copyingAttachments, 1, 3, "one.jpg"},
                            ExportProgress{Stage::copyingAttachments, 2, 3, "two.jpg"},
                            ExportProgress{Stage::copyingAttachments, 3, 3, "three.jpg"},
                            ExportProgress{Stage::writingArchive, 0, 4, "Writing offline website"},
                            ExportProgress{Stage::writingArchive, 2, 4, "Writing transcripts"},
                            ExportProgress{Stage::finalizing, 0, 1, "Finalizing archive"},
                            ExportProgress{Stage::finalizing, 1, 1, "Export complete"}));
}

TEST(ExportReports, tellOfNoCopyingWithoutAttachmentsAndOfOneStepWithoutTheJSONTranscript) {
    ExportFixture fixture(conversationNamed("Ana", {message("m1", "hello")}));
    fixture.run();
    EXPECT_THAT(fixture.reports,
                ElementsAre(ExportProgress{Stage::preparing, 0, 1, "Preparing export"},
                            ExportProgress{Stage::writingArchive, 0, 4, "Writing offline website"},
                            ExportProgress{Stage::writingArchive, 1, 4, "Writing transcripts"},
                            ExportProgress{Stage::finalizing, 0, 1, "Finalizing archive"},
                            ExportProgress{Stage::finalizing, 1, 1, "Export complete"}));
}

TEST(Export, asksTheSourceInOrderAndReleasesWhatItGave) {
    MixedExport fixture;
    fixture.run();
    EXPECT_THAT(fixture.loader->calls, ElementsAre("load chat-7", "locate p1", "release p1", "locate p2",
                                                   "locate p3", "release Source"));
}

class ExportWithoutStoredPath : public testing::TestWithParam<std::optional<std::string>> {};

TEST_P(ExportWithoutStoredPath, countsTheAttachmentAsMissingWithoutAsking) {
    ExportFixture fixture(
        conversationNamed("Ana", {message("m1", "", {attachment("a1", "one.jpg", GetParam())})}));
    const auto result = fixture.run();
    EXPECT_THAT(fixture.loader->calls, ElementsAre("load chat-7"));
    EXPECT_THAT(result.warnings, ElementsAre(ArchiveWarning{.id = "attachment-missing-a1",
                                                            .code = "attachment_missing",
                                                            .summary = "Attachment one.jpg was missing.",
                                                            .sourceID = SourceID{"a1"}}));
}

INSTANTIATE_TEST_SUITE_P(Table, ExportWithoutStoredPath, testing::Values(std::nullopt, ""));

TEST(ExportResult, tellsWhatTheAlbumHolds) {
    MixedExport fixture;
    const auto result = fixture.run();
    EXPECT_EQ(result.archiveURL, fixture.destination / "Ana & Ben — 2024-05-01 12.34.56");
    EXPECT_EQ(result.messageCount, 3);
    EXPECT_EQ(result.attachmentCount, 1);
    EXPECT_EQ(result.attachmentRecordCount, 3);
    EXPECT_EQ(result.reusedAttachmentCount, 0);
    EXPECT_THAT(result.photoPreviewURLs, ElementsAre(result.archiveURL / "attachments/one.jpg"));
}

TEST(ExportResult, carriesTheSourcesWarningsAndThenThoseOfTheAttachments) {
    MixedExport fixture;
    fixture.loader->conversation.warnings = {
        ArchiveWarning{.id = "w", .code = "unresolved_reaction", .summary = "s", .sourceID = {}}};
    std::vector<std::string> ids;
    for (const auto& warning : fixture.run().warnings)
        ids.push_back(warning.id);
    EXPECT_THAT(ids, ElementsAre("w", "attachment-missing-a2", "attachment-unreadable-a3"));
}

TEST(ExportResult, showsTheFirstFivePicturesThatAreThere) {
    std::vector<ArchiveAttachment> attachments;
    for (const char* name : {"1", "missing", "2", "3", "4", "5", "6", "7"}) {
        attachments.push_back(attachment(name, std::string(name) + ".jpg", name));
    }
    attachments.insert(attachments.begin(), attachment("film", "film.mov", "film", "video/quicktime"));
    attachments.insert(attachments.begin(), attachment("untyped", "untyped", "untyped"));
    attachments.front().mimeType.reset();
    ExportFixture fixture(conversationNamed("Ana", {message("m1", "", attachments)}));
    for (const char* name : {"film", "untyped", "1", "2", "3", "4", "5", "6", "7"})
        fixture.addFile(name, name);
    std::vector<std::string> names;
    for (const auto& url : fixture.run().photoPreviewURLs) {
        EXPECT_TRUE(fs::exists(url));
        names.push_back(url.filename().string());
    }
    EXPECT_THAT(names, ElementsAre("1.jpg", "2.jpg", "3.jpg", "4.jpg", "5.jpg"));
}

TEST(ExportAlbum, isSoundByItsOwnManifest) {
    MixedExport fixture;
    fixture.options = everything;
    EXPECT_EQ(test::albumDefect(fixture.run().archiveURL), "");
}

TEST(ExportAlbum, holdsTheWebsiteAndTheManifestWithAllTranscriptsOff) {
    ExportFixture fixture(conversationNamed("Ana", {message("m1", "hello")}));
    EXPECT_THAT(test::visibleFiles(fixture.run().archiveURL),
                ElementsAre("Open Album.html", "assets/app.js", "assets/styles.css", "data/messages.js",
                            "index.html", "manifest.json"));
}

TEST(ExportAlbum, holdsNoAttachmentsFolderWithoutAttachments) {
    ExportFixture fixture(
        conversationNamed("Ana", {message("m1", "", {attachment("a1", "one.jpg", "nowhere")})}));
    EXPECT_FALSE(fs::exists(fixture.run().archiveURL / "attachments"));
}

struct OptionCase {
    const char* name;
    ExportOptions options;
    const char* file;
};

class ExportOption : public testing::TestWithParam<OptionCase> {};

TEST_P(ExportOption, bringsItsTranscriptAndNoOther) {
    ExportFixture fixture(conversationNamed("Ana", {message("m1", "hello")}));
    fixture.options = GetParam().options;
    const fs::path album = fixture.run().archiveURL;
    std::vector<std::string> transcripts;
    for (const std::string& name : test::entriesOf(album)) {
        if (name.starts_with("transcript")) transcripts.push_back(name);
    }
    EXPECT_THAT(transcripts, ElementsAre(GetParam().file));
}

INSTANTIATE_TEST_SUITE_P(Table, ExportOption,
                         testing::Values(OptionCase{"JSON", {true, false, false}, "transcript.json"},
                                         OptionCase{"Markdown", {false, true, false}, "transcript.md"},
                                         OptionCase{"CSV", {false, false, true}, "transcript.csv"}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(ExportAlbum, holdsAPageThatLeadsToTheAlbum) {
    ExportFixture fixture(conversationNamed("Ana"));
    const std::string page = test::readFile(fixture.run().archiveURL / "Open Album.html");
    EXPECT_EQ(page.size(), 166U);
    EXPECT_EQ(page, "<!doctype html><meta charset=\"utf-8\">\n<meta http-equiv=\"refresh\" content=\"0; "
                    "url=index.html\">\n"
                    "<title>Open Album</title>\n<p><a href=\"index.html\">Open the album</a></p>");
}

TEST(ExportAlbum, holdsTheSettledRecordsInItsTranscript) {
    MixedExport fixture;
    fixture.options = everything;
    const auto result = fixture.run();
    const auto written =
        recordFromJSON<ArchiveConversation>(test::readFile(result.archiveURL / "transcript.json"));
    const auto& first = written.messages[0].attachments;
    EXPECT_EQ(first[0].archivePath, "attachments/one.jpg");
    EXPECT_EQ(first[0].sha256, hashFile(result.archiveURL / "attachments/one.jpg", {}));
    EXPECT_EQ(first[1].availability, AttachmentAvailability::missing);
    EXPECT_EQ(first[1].archivePath, std::nullopt);
    EXPECT_EQ(written.messages[2].attachments[0].availability, AttachmentAvailability::unreadable);
    EXPECT_EQ(written.warnings, result.warnings);
}

TEST(ExportAlbum, movesPicturesOutOfTheTranscriptIntoFiles) {
    ExportFixture fixture(conversationNamed("Ana", {message("m1", "hello")}));
    fixture.loader->conversation.participants[0].avatarData = Data{1, 2, 3};
    fixture.options = everything;
    const fs::path album = fixture.run().archiveURL;
    const auto written = recordFromJSON<ArchiveConversation>(test::readFile(album / "transcript.json"));
    EXPECT_EQ(written.participants[0].avatarData, std::nullopt);
    EXPECT_TRUE(fs::exists(album / *written.participants[0].avatarPath));
}

TEST(ExportManifest, carriesTheCountsOfTheExport) {
    std::vector<ArchiveAttachment> attachments;
    for (const char* id : {"1", "2", "3", "missing", "unreadable"})
        attachments.push_back(attachment(id, id, id));
    ExportFixture fixture(conversationNamed("Ana", {message("m1", "", attachments), message("m2", "x")}));
    for (const char* name : {"1", "2", "3"})
        fixture.addFile(name, name);
    fixture.loader->files["unreadable"] = fixture.folder.path();
    const auto result = fixture.run();
    auto manifest = manifestOf(result.archiveURL);
    manifest.files.clear();
    EXPECT_EQ(manifest, (ArchiveManifest{.conversationTitle = "Ana",
                                         .sourceChatID = SourceID{"chat-7"},
                                         .generatedAt = Date::fromUnixSeconds(1'714'567'890),
                                         .sourceMessageCount = 5,
                                         .availableMessageCount = 2,
                                         .messageCount = 2,
                                         .attachmentRecordCount = 5,
                                         .copiedAttachmentCount = 3,
                                         .missingAttachmentCount = 2,
                                         .warnings = result.warnings,
                                         .files = {}}));
}

TEST(ExportManifest, listsTheWebsiteAndNotItself) {
    ExportFixture fixture(conversationNamed("Ana", {message("m1", "hello")}));
    std::vector<std::string> paths;
    for (const auto& file : manifestOf(fixture.run().archiveURL).files)
        paths.push_back(file.path);
    EXPECT_THAT(paths, ElementsAre("Open Album.html", "assets/app.js", "assets/styles.css",
                                   "data/messages.js", "index.html"));
}

TEST(ExportManifest, leavesAnAttachmentOfItsOwnNameOutAndKeepsTheFile) {
    ExportFixture fixture(
        conversationNamed("Ana", {message("m1", "", {attachment("1", "manifest.json", "1")})}));
    fixture.addFile("1", "{}");
    const fs::path album = fixture.run().archiveURL;
    EXPECT_EQ(test::readFile(album / "attachments/manifest.json"), "{}");
    for (const auto& file : manifestOf(album).files)
        EXPECT_NE(file.path, "attachments/manifest.json");
}

struct FolderCase {
    const char* name;
    std::string title;
    std::string folder;
};

class ExportFolderName : public testing::TestWithParam<FolderCase> {};

TEST_P(ExportFolderName, isMadeOfTitleAndDate) {
    ExportFixture fixture(conversationNamed(GetParam().title));
    EXPECT_EQ(fixture.run().archiveURL.filename().string(), GetParam().folder);
}

INSTANTIATE_TEST_SUITE_P(Table, ExportFolderName,
                         testing::Values(FolderCase{"plain", "Zoë", "Zoë — 2024-05-01 12.34.56"},
                                         FolderCase{"blanksAndPoints", " . ",
                                                    "Conversation — 2024-05-01 12.34.56"},
                                         FolderCase{"slashAndColon", "a/b:c", "a-b-c — 2024-05-01 12.34.56"},
                                         FolderCase{"long", std::string(300, 't'),
                                                    std::string(200, 't') + " — 2024-05-01 12.34.56"},
                                         FolderCase{"wideCharacterAtTheLimit", std::string(199, 't') + "éé",
                                                    std::string(199, 't') + " — 2024-05-01 12.34.56"},
                                         FolderCase{"climbing", "../../up", "-..-up — 2024-05-01 12.34.56"}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(ExportFolder, countsOnWhereTheNameIsTaken) {
    ExportFixture fixture(conversationNamed("Ana"));
    for (int count = 0; count < 3; ++count)
        fixture.run();
    EXPECT_THAT(fixture.destinationEntries(),
                ElementsAre("Ana — 2024-05-01 12.34.56", "Ana — 2024-05-01 12.34.56 — 2",
                            "Ana — 2024-05-01 12.34.56 — 3"));
}

TEST(ExportFolder, passesByAFileAndALinkToNothing) {
    ExportFixture fixture(conversationNamed("Ana"));
    fixture.folder.write("Albums/Ana — 2024-05-01 12.34.56", "a file");
    fs::create_symlink("nowhere", fixture.destination / "Ana — 2024-05-01 12.34.56 — 2");
    EXPECT_EQ(fixture.run().archiveURL.filename(), "Ana — 2024-05-01 12.34.56 — 3");
}

TEST(ExportFolder, isMadeWithTheFoldersOnTheWay) {
    ExportFixture fixture(conversationNamed("Ana"));
    fixture.destination /= "new/folder";
    EXPECT_EQ(test::albumDefect(fixture.run().archiveURL), "");
}

TEST(ExportFolder, isMadeBehindALink) {
    ExportFixture fixture(conversationNamed("Ana"));
    fs::create_directory_symlink("Albums", fixture.folder / "Link");
    fixture.destination = fixture.folder / "Link";
    EXPECT_EQ(test::albumDefect(fixture.run().archiveURL), "");
    EXPECT_EQ(fixture.destinationEntries().size(), 1U);
}

TEST(ExportStaging, hasAHiddenNameWithAUniqueIdentifier) {
    ExportFixture fixture(conversationNamed("Ana"));
    std::vector<std::string> names;
    fixture.durableFiles->onFlushTree = [&] {
        for (const auto& name : fixture.destinationEntries()) {
            if (name.starts_with('.')) names.push_back(name);
        }
    };
    fixture.run();
    fixture.run();
    ASSERT_EQ(names.size(), 2U);
    EXPECT_NE(names[0], names[1]);
    const std::regex form(
        "\\.quillbook-staging-[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
    EXPECT_TRUE(std::regex_match(names[0], form)) << names[0];
}

TEST(ExportStaging, sweepsWhatKilledExportsLeft) {
    ExportFixture fixture(conversationNamed("Ana"));
    fixture.folder.write("Albums/.quillbook-staging-1/attachments/a.jpg", "x");
    fixture.folder.write("Albums/.quillbook-staging-", "a file");
    fixture.folder.write("Albums/.quillbook-stagin", "another's");
    fixture.folder.write("Albums/a.quillbook-staging-1", "another's");
    fixture.run();
    EXPECT_THAT(fixture.destinationEntries(),
                ElementsAre(".quillbook-stagin", "Ana — 2024-05-01 12.34.56", "a.quillbook-staging-1"));
}

TEST(ExportStaging, sweepsLinksWithoutFollowingThem) {
    ExportFixture fixture(conversationNamed("Ana"));
    fixture.folder.write("precious/letter", "x");
    fixture.folder.write("Albums/.quillbook-staging-2/file", "x");
    fs::create_directory_symlink(fixture.folder / "precious", fixture.destination / ".quillbook-staging-1");
    fs::create_directory_symlink(fixture.folder / "precious",
                                 fixture.destination / ".quillbook-staging-2/link");
    fixture.run();
    EXPECT_THAT(fixture.destinationEntries(), ElementsAre("Ana — 2024-05-01 12.34.56"));
    EXPECT_EQ(test::readFile(fixture.folder / "precious/letter"), "x");
}

TEST(ExportStaging, sweepsTheRestWhereOneCannotBeRemoved) {
    ExportFixture fixture(conversationNamed("Ana"));
    fixture.folder.write("Albums/.quillbook-staging-1/file", "x");
    fs::create_directory(fixture.destination / ".quillbook-staging-2");
    fs::permissions(fixture.folder.path(), fs::perms(0755));
    fs::permissions(fixture.destination, fs::perms(0777));
    fs::permissions(fixture.destination / ".quillbook-staging-1", fs::perms(0));
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  if (!test::becomeOrdinaryUser()) return "could not change the user";
                  fixture.run();
                  return "";
              }),
              "");
    fs::permissions(fixture.destination / ".quillbook-staging-1", fs::perms(0755));
    EXPECT_THAT(fixture.destinationEntries(),
                ElementsAre(".quillbook-staging-1", "Ana — 2024-05-01 12.34.56"));
}

TEST(ExportStaging, isSweptAlsoByAnExportThatFailsLater) {
    ExportFixture fixture(conversationNamed("Ana"));
    fixture.folder.write("Albums/.quillbook-staging-1/file", "x");
    fs::remove(fixture.folder / "Resources/Web/app.js");
    EXPECT_THROW(fixture.run(), DescribedError);
    EXPECT_THAT(fixture.destinationEntries(), IsEmpty());
}

TEST(ExportStaging, isSweptOnlyOnceTheConversationWasLoaded) {
    ExportFixture fixture(conversationNamed("Ana"));
    fixture.folder.write("Albums/.quillbook-staging-1/file", "x");
    std::vector<std::string> entries;
    fixture.loader->onCall = [&](const std::string&) { entries = fixture.destinationEntries(); };
    fixture.run();
    EXPECT_THAT(entries, ElementsAre(".quillbook-staging-1"));
}

TEST(ExportDurability, flushesTheAlbumBeforeItsRenamingAndTheFolderBehind) {
    ExportFixture fixture(conversationNamed("Ana"));
    std::vector<std::string> before;
    std::vector<std::string> behind;
    fixture.durableFiles->onFlushTree = [&] { before = fixture.destinationEntries(); };
    fixture.durableFiles->onFlushFolder = [&] { behind = fixture.destinationEntries(); };
    fixture.run();
    EXPECT_THAT(fixture.durableFiles->calls, ElementsAre("tree .quillbook-staging-", "folder Albums"));
    EXPECT_THAT(before, Not(Contains("Ana — 2024-05-01 12.34.56")));
    EXPECT_THAT(behind, ElementsAre("Ana — 2024-05-01 12.34.56"));
}

TEST(ExportReuse, clonesTheAttachmentsOfAnEarlierAlbum) {
    MixedExport fixture;
    fixture.clone = [](const fs::path& from, const fs::path& to) { return fs::copy_file(from, to); };
    EXPECT_EQ(fixture.run().reusedAttachmentCount, 0);
    const auto again = fixture.run();
    EXPECT_EQ(again.reusedAttachmentCount, 1);
    EXPECT_EQ(again.attachmentCount, 1);
    EXPECT_EQ(test::albumDefect(again.archiveURL), "");
}

TEST(ExportReuse, copiesAnAttachmentThatTheUserRemovedFromTheEarlierAlbum) {
    MixedExport fixture;
    fixture.clone = [](const fs::path& from, const fs::path& to) { return fs::copy_file(from, to); };
    fs::remove(fixture.run().archiveURL / "attachments/one.jpg");
    const auto again = fixture.run();
    EXPECT_EQ(again.reusedAttachmentCount, 0);
    EXPECT_EQ(again.attachmentCount, 1);
}

TEST(ExportReuse, takesNothingFromAlbumsOfOtherConversations) {
    MixedExport fixture;
    fixture.clone = [](const fs::path& from, const fs::path& to) { return fs::copy_file(from, to); };
    fixture.run();
    fixture.loader->conversation.id = SourceID{"chat-8"};
    EXPECT_EQ(fixture.run().reusedAttachmentCount, 0);
}

TEST(Export, takesALongConversationWithoutWaiting) {
    std::vector<ArchiveMessage> messages(60'000, message("m", "hello"));
    for (int index = 0; index < 30'000; ++index) {
        messages[static_cast<std::size_t>(index) * 2].attachments = {
            attachment("a" + std::to_string(index), "photo.jpg", "nowhere")};
    }
    ExportFixture fixture(conversationNamed("Ana", std::move(messages)));
    const auto result = fixture.run();
    EXPECT_EQ(result.attachmentRecordCount, 30'000);
    EXPECT_EQ(result.warnings.size(), 30'000U);
}

} // namespace
} // namespace quillbook
