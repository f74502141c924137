#include "core/records/Cancellation.h"
#include "export/ArchiveManifest.h"
#include "export/ArchiveReuseIndex.h"
#include "export/JSONFile.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;
using Entry = ArchiveReuseIndex::Entry;

const SourceID chat{"chat-7"};

/// An album whose manifest claims the files.
fs::path addAlbum(const TemporaryFolder& folder, const std::string& name, double date,
                  std::vector<ManifestFile> files) {
    fs::create_directories(folder / name);
    ArchiveManifest manifest;
    manifest.sourceChatID = chat;
    manifest.generatedAt = Date::fromUnixSeconds(date);
    manifest.files = std::move(files);
    writeJSONFile(folder / name / "manifest.json", manifest);
    return folder / name;
}

ManifestFile file(const std::string& path, std::int64_t size = 5, const std::string& digest = "d1") {
    return ManifestFile{.path = path, .byteSize = size, .sha256 = digest};
}

TEST(ArchiveReuseIndex, isEmptyForAnEmptyFolder) {
    const TemporaryFolder folder;
    EXPECT_THAT(ArchiveReuseIndex(folder.path(), chat).entriesBySize, IsEmpty());
}

TEST(ArchiveReuseIndex, isNotBuiltOnceStopped) {
    const TemporaryFolder folder;
    addAlbum(folder, "album", 1, {file("attachments/a.jpg")});
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(ArchiveReuseIndex(folder.path(), chat, stop.get_token()), CancellationError);
}

TEST(ArchiveReuseIndex, holdsWhatTheManifestClaimsBySize) {
    const TemporaryFolder folder;
    folder.write("album/attachments/a.jpg", "other bytes than claimed");
    const fs::path album = addAlbum(folder, "album", 1, {file("attachments/a.jpg", 5, "d1")});
    const ArchiveReuseIndex index(folder.path(), chat);
    EXPECT_THAT(index.entriesBySize.at(5),
                ElementsAre(Entry{.sha256 = "d1", .url = album / "attachments/a.jpg"}));
}

TEST(ArchiveReuseIndex, putsTheNewestAlbumFirstWithinOneSize) {
    const TemporaryFolder folder;
    folder.write("a/attachments/x", "12345");
    folder.write("b/attachments/x", "12345");
    const fs::path old = addAlbum(folder, "a", 1, {file("attachments/x")});
    const fs::path recent = addAlbum(folder, "b", 2, {file("attachments/x")});
    EXPECT_THAT(ArchiveReuseIndex(folder.path(), chat).entriesBySize.at(5),
                ElementsAre(Entry{.sha256 = "d1", .url = recent / "attachments/x"},
                            Entry{.sha256 = "d1", .url = old / "attachments/x"}));
}

TEST(ArchiveReuseIndex, keepsTheManifestsOrderWithinOneAlbum) {
    const TemporaryFolder folder;
    folder.write("album/attachments/x", "12345");
    folder.write("album/attachments/y", "12345");
    const fs::path album =
        addAlbum(folder, "album", 1, {file("attachments/y", 5, "d2"), file("attachments/x", 5, "d1")});
    EXPECT_THAT(ArchiveReuseIndex(folder.path(), chat).entriesBySize.at(5),
                ElementsAre(Entry{.sha256 = "d2", .url = album / "attachments/y"},
                            Entry{.sha256 = "d1", .url = album / "attachments/x"}));
}

TEST(ArchiveReuseIndex, givesTwoEntriesForAnAttachmentThatIsListedTwice) {
    const TemporaryFolder folder;
    folder.write("album/attachments/x", "12345");
    addAlbum(folder, "album", 1, {file("attachments/x"), file("attachments/x")});
    EXPECT_EQ(ArchiveReuseIndex(folder.path(), chat).entriesBySize.at(5).size(), 2U);
}

TEST(ArchiveReuseIndex, findsFilesInFoldersBelowTheAttachments) {
    const TemporaryFolder folder;
    folder.write("album/attachments/2019/x", "12345");
    addAlbum(folder, "album", 1, {file("attachments/2019/x")});
    EXPECT_EQ(ArchiveReuseIndex(folder.path(), chat).entriesBySize.at(5).size(), 1U);
}

class PathOutOfUse : public testing::TestWithParam<std::string> {
protected:
    // Every path below leads to an existing file, but for the one that the user removed.
    void SetUp() override {
        for (const char* path :
             {"album/attachments/x", "album/index.html", "album/attachments/sub/x", "outside/x", "album/x"}) {
            folder_.write(path, "12345");
        }
        fs::create_symlink(folder_ / "outside/x", folder_ / "album/attachments/link");
        fs::create_directory_symlink(folder_ / "outside", folder_ / "album/attachments/linked");
        ASSERT_EQ(::mkfifo((folder_ / "album/attachments/pipe").c_str(), 0600), 0);
    }

    TemporaryFolder folder_;
};

TEST_P(PathOutOfUse, isSkipped) {
    addAlbum(folder_, "album", 1, {file(GetParam())});
    EXPECT_THAT(ArchiveReuseIndex(folder_.path(), chat).entriesBySize, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Table, PathOutOfUse,
                         testing::Values("attachments/removed", "index.html", "assets/attachments/x",
                                         "attachments", "attachments/", "Attachments/x", "/attachments/x",
                                         "attachments/sub", "attachments/../x",
                                         "attachments/../attachments/x", "attachments/../../outside/x",
                                         "attachments/../../../../../../../../etc/passwd", "attachments//x",
                                         "attachments/./x", "attachments/sub/../x", "attachments/x/",
                                         "attachments/link", "attachments/linked/x", "attachments/pipe",
                                         "attachments//etc/passwd", std::string("attachments/x\0y", 15),
                                         "attachments/" + std::string(5'000, 'n')));

TEST(ArchiveReuseIndex, skipsAnAttachmentsFolderThatIsALink) {
    const TemporaryFolder folder;
    folder.write("outside/x", "12345");
    addAlbum(folder, "album", 1, {file("attachments/x")});
    fs::create_directory_symlink(folder / "outside", folder / "album/attachments");
    EXPECT_THAT(ArchiveReuseIndex(folder.path(), chat).entriesBySize, IsEmpty());
}

TEST(ArchiveReuseIndex, isBuiltOfAFullAlbumWithoutWaiting) {
    const TemporaryFolder folder;
    folder.write("album/attachments/x", "12345");
    std::vector<ManifestFile> files(100'000, file("attachments/x"));
    for (std::size_t index = 0; index < files.size(); ++index)
        files[index].byteSize = static_cast<std::int64_t>(index % 40'000);
    addAlbum(folder, "album", 1, std::move(files));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(ArchiveReuseIndex(folder.path(), chat).entriesBySize.size(), 40'000U);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

} // namespace
} // namespace quillbook
