#include "export/ArchiveDirectory.h"
#include "export/JSONFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;

const SourceID chat{"chat-7"};

ArchiveManifest manifest(double unixSeconds, const SourceID& id = chat) {
    ArchiveManifest manifest;
    manifest.sourceChatID = id;
    manifest.generatedAt = Date::fromUnixSeconds(unixSeconds);
    manifest.messageCount = 40;
    manifest.sourceMessageCount = 42;
    return manifest;
}

/// Makes an album of nothing but its manifest.
fs::path addAlbum(const fs::path& folder, const std::string& name, const ArchiveManifest& manifest) {
    fs::create_directories(folder / name);
    writeJSONFile(folder / name / "manifest.json", manifest);
    return folder / name;
}

std::vector<std::string> albumNames(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& archive : ArchiveDirectory::archives(folder, chat))
        names.push_back(archive.url.filename().string());
    return names;
}

TEST(ArchiveDirectory, givesTheAlbumWithItsManifest) {
    const TemporaryFolder folder;
    const fs::path album = addAlbum(folder.path(), "Zoë — 2024", manifest(1'000));
    const std::vector<ArchiveDirectory::Archive> expected{{.url = album, .manifest = manifest(1'000)}};
    EXPECT_EQ(ArchiveDirectory::archives(folder.path(), chat), expected);
}

TEST(ArchiveDirectory, sortsNewestFirst) {
    const TemporaryFolder folder;
    addAlbum(folder.path(), "a", manifest(1'000));
    addAlbum(folder.path(), "b", manifest(3'000));
    addAlbum(folder.path(), "c", manifest(2'000));
    EXPECT_THAT(albumNames(folder.path()), ElementsAre("b", "c", "a"));
}

TEST(ArchiveDirectory, keepsTheOrderOfTheListingForEqualDates) {
    const TemporaryFolder folder;
    for (const char* name : {"m", "b", "z", "a"})
        addAlbum(folder.path(), name, manifest(1'000));
    EXPECT_THAT(albumNames(folder.path()), ElementsAre("a", "b", "m", "z"));
}

TEST(ArchiveDirectory, givesNoAlbumsOfOtherConversations) {
    const TemporaryFolder folder;
    addAlbum(folder.path(), "other", manifest(1'000, SourceID{"chat-70"}));
    addAlbum(folder.path(), "capital", manifest(1'000, SourceID{"Chat-7"}));
    EXPECT_THAT(albumNames(folder.path()), IsEmpty());
}

TEST(ArchiveDirectory, passesOverADamagedManifestSoThatTheNextOlderIsNewest) {
    const TemporaryFolder folder;
    addAlbum(folder.path(), "old", manifest(1'000));
    fs::resize_file(addAlbum(folder.path(), "new", manifest(2'000)) / "manifest.json", 100);
    EXPECT_THAT(albumNames(folder.path()), ElementsAre("old"));
}

TEST(ArchiveDirectory, passesOverHiddenFolders) {
    const TemporaryFolder folder;
    addAlbum(folder.path(), ".quillbook-staging-1", manifest(1'000));
    addAlbum(folder.path(), ".hidden", manifest(1'000));
    EXPECT_THAT(albumNames(folder.path()), IsEmpty());
}

TEST(ArchiveDirectory, passesOverAManifestAtTheTopOfTheFolder) {
    const TemporaryFolder folder;
    writeJSONFile(folder / "manifest.json", manifest(1'000));
    EXPECT_THAT(albumNames(folder.path()), IsEmpty());
}

TEST(ArchiveDirectory, passesOverAlbumsDeeperDown) {
    const TemporaryFolder folder;
    addAlbum(folder.path(), "year/album", manifest(1'000));
    EXPECT_THAT(albumNames(folder.path()), IsEmpty());
}

TEST(ArchiveDirectory, passesOverLinksToAlbums) {
    const TemporaryFolder folder;
    addAlbum(folder / "elsewhere", "album", manifest(1'000));
    fs::create_directory(folder / "albums");
    fs::create_directory_symlink(folder / "elsewhere/album", folder / "albums/link");
    EXPECT_THAT(albumNames(folder / "albums"), IsEmpty());
}

TEST(ArchiveDirectory, isEmptyForAnEmptyFolder) {
    const TemporaryFolder folder;
    EXPECT_THAT(albumNames(folder.path()), IsEmpty());
}

TEST(ArchiveDirectory, isEmptyForAFolderThatIsAbsent) {
    const TemporaryFolder folder;
    EXPECT_THAT(albumNames(folder / "absent"), IsEmpty());
}

TEST(ArchiveDirectory, isEmptyForAFile) {
    const TemporaryFolder folder;
    EXPECT_THAT(albumNames(folder.write("file", "x")), IsEmpty());
}

TEST(ArchiveDirectory, passesOverAManifestThatIsAPipeWithoutWaiting) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "album");
    ASSERT_EQ(::mkfifo((folder / "album/manifest.json").c_str(), 0600), 0);
    EXPECT_THAT(albumNames(folder.path()), IsEmpty());
}

TEST(ArchiveDirectory, passesOverAManifestOfATebibyte) {
    const TemporaryFolder folder;
    const fs::path album = addAlbum(folder.path(), "album", manifest(1'000));
    fs::resize_file(album / "manifest.json", std::uintmax_t{1} << 40U); // a hole, which takes no room
    EXPECT_THAT(albumNames(folder.path()), IsEmpty());
}

struct HostileCase {
    const char* name;
    std::string manifest;
};

class HostileManifest : public testing::TestWithParam<HostileCase> {};

TEST_P(HostileManifest, isPassedOver) {
    const TemporaryFolder folder;
    folder.write("album/manifest.json", GetParam().manifest);
    EXPECT_THAT(albumNames(folder.path()), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Table, HostileManifest,
    testing::Values(HostileCase{"empty", ""}, HostileCase{"noJSON", "PK\x03\x04"}, HostileCase{"array", "[]"},
                    HostileCase{"idIsNumber", R"({"sourceChatID": 7})"},
                    HostileCase{"onlyTheID", R"({"sourceChatID": "chat-7"})"},
                    HostileCase{"deep", R"({"sourceChatID": )" + std::string(1'000'000, '[')},
                    HostileCase{"brokenUTF8", "{\"sourceChatID\": \"chat-7\xFF\"}"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(PriorArchive, tellsOfTheNewestAlbum) {
    const TemporaryFolder folder;
    addAlbum(folder.path(), "old", manifest(1'000));
    const fs::path album = addAlbum(folder.path(), "new", manifest(2'000));
    const PriorArchiveSummary expected{.archiveURL = album,
                                       .archivedAt = Date::fromUnixSeconds(2'000),
                                       .messageCount = 40,
                                       .sourceMessageCount = 42};
    EXPECT_EQ(priorArchive(chat, folder.path()), expected);
}

TEST(PriorArchive, findsAnAlbumThatTheUserGaveAnotherName) {
    const TemporaryFolder folder;
    const fs::path album = addAlbum(folder.path(), "before", manifest(1'000));
    fs::rename(album, folder / "Mum");
    EXPECT_EQ(priorArchive(chat, folder.path())->archiveURL, folder / "Mum");
}

TEST(PriorArchive, isAbsentForAnEmptyFolder) {
    const TemporaryFolder folder;
    EXPECT_EQ(priorArchive(chat, folder.path()), std::nullopt);
}

} // namespace
} // namespace quillbook
