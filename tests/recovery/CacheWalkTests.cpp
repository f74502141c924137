#include "recovery/CacheWalk.h"
#include "tests/recovery/ChangedListings.h"
#include "tests/recovery/DeepFolders.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <atomic>
#include <climits>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr auto everyName = [](std::string_view) { return true; };

/// What a walk takes, as paths below the folder, with the size behind a colon.
std::vector<std::string> walked(const fs::path& root,
                                const std::function<bool(std::string_view)>& isWanted = everyName) {
    std::vector<std::string> files;
    walkCache(root, isWanted, [&](const CachedFile& file) {
        EXPECT_EQ(file.url.filename(), file.basename);
        files.push_back(file.url.lexically_relative(root).string() + ':' + std::to_string(file.size));
    });
    return files;
}

TEST(CacheWalk, takesFilesAtEveryDepth) {
    const TemporaryFolder cache;
    cache.write("a.jpg", "1");
    cache.write("b/c/d.jpg", "22");
    EXPECT_THAT(walked(cache.path()), UnorderedElementsAre("a.jpg:1", "b/c/d.jpg:2"));
}

TEST(CacheWalk, takesOnlyFilesOfWantedNames) {
    const TemporaryFolder cache;
    cache.write("a.jpg", "1");
    cache.write("b/a.jpg", "1");
    cache.write("b/b.jpg", "1");
    const auto isWanted = [](std::string_view name) { return name == "b.jpg"; };
    EXPECT_THAT(walked(cache.path(), isWanted), UnorderedElementsAre("b/b.jpg:1"));
}

TEST(CacheWalk, leavesOutEmptyFiles) {
    const TemporaryFolder cache;
    cache.write("a.jpg", "");
    EXPECT_THAT(walked(cache.path()), IsEmpty());
}

TEST(CacheWalk, leavesOutHiddenFilesAndAllBelowHiddenFolders) {
    const TemporaryFolder cache;
    cache.write(".a.jpg", "1");
    cache.write(".hidden/b/c.jpg", "1");
    cache.write("b/.hidden/c.jpg", "1");
    EXPECT_THAT(walked(cache.path()), IsEmpty());
}

TEST(CacheWalk, walksAFolderWhoseOwnNameIsHidden) {
    const TemporaryFolder home;
    home.write(".cache/a.jpg", "1");
    EXPECT_THAT(walked(home / ".cache"), UnorderedElementsAre("a.jpg:1"));
}

TEST(CacheWalk, leavesOutLinksToFilesAndFolders) {
    const TemporaryFolder outside;
    const TemporaryFolder cache;
    fs::create_symlink(outside.write("a.jpg", "1"), cache / "a.jpg");
    fs::create_directory_symlink(outside.path(), cache / "folder");
    fs::create_symlink("nowhere", cache / "b.jpg");
    EXPECT_THAT(walked(cache.path()), IsEmpty());
}

TEST(CacheWalk, endsWhereLinksLoop) {
    const TemporaryFolder cache;
    cache.write("a/b.jpg", "1");
    fs::create_directory_symlink("..", cache / "a/up");
    fs::create_directory_symlink("self", cache / "self");
    EXPECT_THAT(walked(cache.path()), UnorderedElementsAre("a/b.jpg:1"));
}

TEST(CacheWalk, followsALinkAtTheRoot) {
    const TemporaryFolder disk;
    disk.write("moved/a.jpg", "1");
    fs::create_directory_symlink(disk / "moved", disk / "cache");
    EXPECT_THAT(walked(disk / "cache"), UnorderedElementsAre("a.jpg:1"));
}

TEST(CacheWalk, leavesOutPipesWithoutWaitingForThem) {
    const TemporaryFolder cache;
    ASSERT_EQ(::mkfifo((cache / "a.jpg").c_str(), 0666), 0);
    EXPECT_THAT(walked(cache.path()), IsEmpty());
}

TEST(CacheWalk, passesOverARootThatIsMissingAFileOrNameless) {
    const TemporaryFolder cache;
    EXPECT_THAT(walked(cache / "missing"), IsEmpty());
    EXPECT_THAT(walked(cache.write("a.jpg", "1")), IsEmpty());
    EXPECT_THAT(walked({}), IsEmpty());
}

TEST(CacheWalk, joinsARootThatEndsInASlash) {
    const TemporaryFolder cache;
    cache.write("a.jpg", "1");
    std::vector<std::string> files;
    walkCache(cache.path().native() + '/', everyName,
              [&](const CachedFile& file) { files.push_back(file.url.native()); });
    EXPECT_THAT(files, UnorderedElementsAre((cache / "a.jpg").native()));
}

TEST(CacheWalk, looksAtEntriesWhoseTypeTheListingDoesNotTell) {
    const TemporaryFolder cache;
    cache.write("a.jpg", "1");
    cache.write("b/c.jpg", "22");
    cache.write(".hidden/c.jpg", "22");
    fs::create_symlink("a.jpg", cache / "link.jpg");
    fs::create_directory_symlink("b", cache / "linked");
    const test::ListingsWithoutTypes listings;
    EXPECT_THAT(walked(cache.path()), UnorderedElementsAre("a.jpg:1", "b/c.jpg:2"));
    EXPECT_GE(test::ListingsWithoutTypes::changedEntries(), 5);
}

TEST(CacheWalk, passesOverFoldersThatMayNotBeRead) {
    const TemporaryFolder cache;
    cache.write("open/a.jpg", "1");
    cache.write("closed/b.jpg", "1");
    cache.write("listed/c.jpg", "1"); // may be listed, but nothing in it looked at
    fs::permissions(cache.path(), fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(cache / "closed", fs::perms::none);
    fs::permissions(cache / "listed", fs::perms::owner_read | fs::perms::others_read);
    const std::string found = test::runInChild([&]() -> std::string {
        if (!test::becomeOrdinaryUser()) return "no ordinary user";
        std::string text;
        for (const std::string& file : walked(cache.path()))
            text += file + ' ';
        return text;
    });
    fs::permissions(cache / "closed", fs::perms::owner_all);
    fs::permissions(cache / "listed", fs::perms::owner_all);
    EXPECT_EQ(found, "open/a.jpg:1 ");
}

TEST(CacheWalk, passesOverAFileThatGoesBetweenListingAndLook) {
    const TemporaryFolder cache;
    cache.write("a.jpg", "1");
    cache.write("b/a.jpg", "1");
    const auto removing = [&](std::string_view) {
        fs::remove(cache / "a.jpg");
        return true;
    };
    EXPECT_THAT(walked(cache.path(), removing), UnorderedElementsAre("b/a.jpg:1"));
}

TEST(CacheWalk, passesOverAFileThatBecomesALinkOrFolderBetweenListingAndLook) {
    const TemporaryFolder cache;
    cache.write("a.jpg", "1");
    cache.write("b.jpg", "1");
    const auto changing = [&](std::string_view name) {
        fs::remove(cache / name);
        if (name == "a.jpg") fs::create_symlink("/etc/passwd", cache / name);
        if (name == "b.jpg") fs::create_directory(cache / name);
        return true;
    };
    EXPECT_THAT(walked(cache.path(), changing), IsEmpty());
}

TEST(CacheWalk, passesOverFoldersThatGoBetweenListingAndOpening) {
    const TemporaryFolder cache;
    for (char name = 'a'; name <= 'h'; ++name)
        cache.write(std::string(1, name) + "/file.jpg", "1");
    int taken = 0;
    // The first file taken lies in one of the folders; the others are listed by then.
    walkCache(cache.path(), everyName, [&](const CachedFile& file) {
        ++taken;
        for (const auto& entry : fs::directory_iterator(cache.path()))
            if (entry.path() != file.url.parent_path()) fs::remove_all(entry.path());
    });
    EXPECT_EQ(taken, 1);
}

TEST(CacheWalk, doesNotFollowALinkThatTakesAListedFoldersPlace) {
    const TemporaryFolder outside;
    outside.write("file.jpg", "1");
    const TemporaryFolder cache;
    for (char name = 'a'; name <= 'h'; ++name)
        cache.write(std::string(1, name) + "/file.jpg", "1");
    int taken = 0;
    walkCache(cache.path(), everyName, [&](const CachedFile& file) {
        ++taken;
        for (char name = 'a'; name <= 'h'; ++name) {
            const fs::path folder = cache / std::string(1, name);
            if (folder == file.url.parent_path()) continue;
            fs::remove_all(folder);
            fs::create_directory_symlink(outside.path(), folder);
        }
    });
    EXPECT_EQ(taken, 1);
}

TEST(CacheWalk, finishesAndTakesWhatStaysWhileFoldersComeAndGo) {
    const TemporaryFolder cache;
    cache.write("steady/deep/file.jpg", "1");
    std::atomic<bool> isOver = false;
    std::thread disturbing([&] {
        while (!isOver) {
            cache.write("passing/a/b/c/other.jpg", "1");
            std::error_code ignored;
            fs::remove_all(cache / "passing", ignored);
        }
    });
    int found = 0;
    for (int round = 0; round < 300; ++round) {
        for (const std::string& file : walked(cache.path()))
            found += file == "steady/deep/file.jpg:1" ? 1 : 0;
    }
    isOver = true;
    disturbing.join();
    EXPECT_EQ(found, 300);
}

TEST(CacheWalk, takesEveryFileOfADeepTreeWithFewOpenFolders) {
    constexpr int depth = 500;
    const TemporaryFolder cache;
    const test::DeepFolders folders(cache.path(), depth, [](int folder) {
        ASSERT_EQ(::mkdirat(folder, "e", 0777), 0);
        test::writeAt(folder, "e/side.jpg", "1");
        ASSERT_EQ(::mkdirat(folder, "c", 0777), 0);
        test::writeAt(folder, "c/side.jpg", "1");
    });
    const std::string found = test::runInChild([&] {
        const rlimit few{100, 100};
        ::setrlimit(RLIMIT_NOFILE, &few);
        return std::to_string(walked(cache.path()).size());
    });
    EXPECT_EQ(found, std::to_string(2 * depth));
}

TEST(CacheWalk, takesWhatHasAPathAndPassesOverWhatIsDeeperThanAnyPath) {
    constexpr int depth = 2'500;
    const TemporaryFolder cache;
    const test::DeepFolders folders(cache.path(), depth,
                                    [](int folder) { test::writeAt(folder, "a.jpg", "1"); });
    std::set<std::size_t> lengths;
    walkCache(cache.path(), everyName,
              [&](const CachedFile& file) { lengths.insert(file.url.native().size()); });
    // Every level is two bytes longer; the system takes PATH_MAX with the zero at the end.
    const std::size_t first = cache.path().native().size() + std::string("/d/a.jpg").size();
    EXPECT_EQ(lengths.size(), (PATH_MAX - 1 - first) / 2 + 1);
    EXPECT_LT(*lengths.rbegin(), std::size_t{PATH_MAX});
}

} // namespace
} // namespace quillbook
