#include "recovery/CloudKitCacheRecoveryService.h"
#include "tests/recovery/RecoveryRecords.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FolderSnapshot.h"
#include "tests/support/TemporaryFolder.h"

#include <cerrno>
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::candidate;
using test::readFile;
using test::TemporaryFolder;
using testing::IsEmpty;

/// A recovery root that stands, a file "kept" outside it, and a cached file "a.jpg" of 5 bytes.
class FailedRecovery : public testing::Test {
protected:
    FailedRecovery() : source_(cache_.write("a.jpg", "first")) {
        folder_.write("outside/kept", "kept");
        fs::create_directory(root());
    }

    fs::path root() const { return folder_ / "root"; }
    RecoveryOutcome recover(const std::vector<RecoveryCandidate>& candidates) const {
        return CloudKitCacheRecoveryService({}).recover(candidates, root());
    }
    void expectFailureThatWritesNothing(const RecoveryCandidate& wanted) const {
        const auto before = test::snapshotOf(folder_.path());
        EXPECT_EQ(recover({wanted}), (RecoveryOutcome{.failedCount = 1}));
        EXPECT_EQ(test::snapshotOf(folder_.path()), before);
    }

    TemporaryFolder cache_;
    TemporaryFolder folder_;
    fs::path source_;
};

struct PlaceCase {
    const char* name;
    std::string destination;
};

/// The root holds links of several kinds, and a folder "folder".
class RefusedPlace : public FailedRecovery, public testing::WithParamInterface<PlaceCase> {};

TEST_P(RefusedPlace, countsAsFailedAndWritesNothing) {
    fs::create_directory(root() / "folder");
    fs::create_directory_symlink("../outside", root() / "out");
    fs::create_directory_symlink(folder_ / "outside/new", root() / "dangling");
    fs::create_symlink("../outside/kept", root() / "file");
    fs::create_symlink("new", root() / "inside");
    fs::create_directory_symlink(".", root() / "self");
    fs::create_directory_symlink("loop", root() / "loop");
    expectFailureThatWritesNothing(candidate(source_, GetParam().destination, 5));
}

INSTANTIATE_TEST_SUITE_P(
    Table, RefusedPlace,
    testing::Values(
        PlaceCase{"throughALinkOut", "out/a.jpg"}, PlaceCase{"deepThroughALinkOut", "out/x/y/a.jpg"},
        PlaceCase{"throughALinkOutToNothing", "dangling/a.jpg"}, PlaceCase{"linkToAFileOutside", "file"},
        PlaceCase{"linkToNothingInside", "inside"}, PlaceCase{"loopOfLinks", "loop/a.jpg"},
        PlaceCase{"climbing", "../outside/a.jpg"}, PlaceCase{"climbingBehindAFolder", "folder/../../a.jpg"},
        PlaceCase{"manifest", "recovery-manifest.json"},
        PlaceCase{"manifestWithADot", "./recovery-manifest.json"},
        PlaceCase{"manifestWithTwoSlashes", "/recovery-manifest.json"},
        PlaceCase{"manifestBehindAFolder", "new/../recovery-manifest.json"},
        PlaceCase{"manifestThroughALink", "self/recovery-manifest.json"},
        PlaceCase{"belowTheManifest", "recovery-manifest.json/a.jpg"}, PlaceCase{"folder", "folder"},
        PlaceCase{"folderWithASlash", "folder/"}, PlaceCase{"nothing", ""}, PlaceCase{"dot", "."},
        PlaceCase{"dots", "new/.."}, PlaceCase{"zeroByte", std::string("a\0b", 3)},
        PlaceCase{"longName", std::string(256, 'a')}, PlaceCase{"longPath", std::string(3'000, 'a') + "/b"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(FailedRecovery, makesNoRootForARefusedPlace) {
    fs::remove(root());
    for (const char* destination : {"../a.jpg", "recovery-manifest.json", ".", ""})
        expectFailureThatWritesNothing(candidate(source_, destination, 5));
}

TEST_F(FailedRecovery, countsAPipeAtTheDestinationAsFailed) {
    ASSERT_EQ(::mkfifo((root() / "a.jpg").c_str(), 0666), 0);
    expectFailureThatWritesNothing(candidate(source_, "a.jpg", 5));
}

TEST_F(FailedRecovery, countsAFileInTheWayOfAFolderAsFailed) {
    folder_.write("root/Attachments", "x");
    expectFailureThatWritesNothing(candidate(source_, "Attachments/a.jpg", 5));
}

TEST_F(FailedRecovery, followsALinkThatStaysInside) {
    fs::create_directory(root() / "real");
    fs::create_directory_symlink("real", root() / "link");
    EXPECT_EQ(recover({candidate(source_, "link/a.jpg", 5)}).recoveredCount, 1);
    EXPECT_EQ(readFile(root() / "real/a.jpg"), "first");
}

struct SourceCase {
    const char* name;
    std::function<void(const fs::path&)> change;
    std::int64_t bytes;
};

class ChangedSource : public FailedRecovery, public testing::WithParamInterface<SourceCase> {};

TEST_P(ChangedSource, countsAsFailedAndLeavesNoCopy) {
    GetParam().change(source_);
    expectFailureThatWritesNothing(candidate(source_, "a.jpg", GetParam().bytes));
}

INSTANTIATE_TEST_SUITE_P(
    Table, ChangedSource,
    testing::Values(SourceCase{"gone", [](const fs::path& file) { fs::remove(file); }, 5},
                    SourceCase{"cacheGone", [](const fs::path& file) { fs::remove_all(file.parent_path()); },
                               5},
                    SourceCase{"grown", [](const fs::path& file) { fs::resize_file(file, 6); }, 5},
                    SourceCase{"cutShort", [](const fs::path& file) { fs::resize_file(file, 4); }, 5},
                    SourceCase{"emptied", [](const fs::path& file) { fs::resize_file(file, 0); }, 5},
                    SourceCase{"cutShortBehindABlock",
                               [](const fs::path& file) { fs::resize_file(file, 2'000'000); }, 2'000'001},
                    SourceCase{"grownBehindABlock",
                               [](const fs::path& file) { fs::resize_file(file, 2'000'001); }, 2'000'000},
                    SourceCase{"negativeSize", [](const fs::path&) {}, -5},
                    SourceCase{"linkToTheSame",
                               [](const fs::path& file) {
                                   fs::rename(file, file.native() + ".moved");
                                   fs::create_symlink("a.jpg.moved", file);
                               },
                               5},
                    SourceCase{"folder",
                               [](const fs::path& file) {
                                   fs::remove(file);
                                   fs::create_directory(file);
                               },
                               5},
                    SourceCase{"pipe",
                               [](const fs::path& file) {
                                   fs::remove(file);
                                   ASSERT_EQ(::mkfifo(file.c_str(), 0666), 0);
                               },
                               5}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(FailedRecovery, goesOnBehindAFailure) {
    const auto outcome =
        recover({candidate(cache_ / "gone.jpg", "x/gone.jpg", 5), candidate(source_, "a.jpg", 5),
                 candidate(source_, "recovery-manifest.json", 5)});
    EXPECT_EQ(outcome, (RecoveryOutcome{.recoveredCount = 1,
                                        .failedCount = 2,
                                        .manifestURL = root() / "recovery-manifest.json",
                                        .recoveredBytes = 5}));
    EXPECT_THAT(readFile(root() / "recovery-manifest.json"), testing::HasSubstr("\"count\" : 1,"));
}

TEST_F(FailedRecovery, leavesAnOlderManifestWhenEveryCandidateFails) {
    folder_.write("root/recovery-manifest.json", "older");
    expectFailureThatWritesNothing(candidate(cache_ / "gone.jpg", "a.jpg", 5));
}

TEST_F(FailedRecovery, namesTheManifestAlsoWhenItCannotBeWritten) {
    fs::create_directory(root() / "recovery-manifest.json");
    const auto outcome = recover({candidate(source_, "a.jpg", 5)});
    EXPECT_EQ(outcome, (RecoveryOutcome{.recoveredCount = 1,
                                        .manifestURL = root() / "recovery-manifest.json",
                                        .recoveredBytes = 5}));
    EXPECT_TRUE(fs::is_empty(root() / "recovery-manifest.json"));
}

TEST_F(FailedRecovery, replacesALinkInTheManifestsPlaceAndNotWhatItLeadsTo) {
    fs::create_symlink("../outside/kept", root() / "recovery-manifest.json");
    EXPECT_EQ(recover({candidate(source_, "a.jpg", 5)}).recoveredCount, 1);
    EXPECT_EQ(readFile(folder_ / "outside/kept"), "kept");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(root() / "recovery-manifest.json")));
}

/// Runs a check as a user whom permissions bind, on folders that are open to everybody.
class BoundRecovery : public FailedRecovery {
protected:
    BoundRecovery() {
        for (const fs::path& folder : {cache_.path(), folder_.path(), root()})
            fs::permissions(folder, fs::perms::all);
    }
    std::string asOrdinaryUser(const std::function<std::string()>& check) const {
        return test::runInChild([&] { return test::becomeOrdinaryUser() ? check() : "no ordinary user"; });
    }
    std::string outcomeOf(const std::vector<RecoveryCandidate>& candidates) const {
        const auto outcome = recover(candidates);
        return std::to_string(outcome.recoveredCount) + " recovered, " + std::to_string(outcome.failedCount) +
               " failed" + (outcome.manifestURL ? ", manifest" : "");
    }
};

TEST_F(BoundRecovery, countsEveryCandidateAsFailedInAReadOnlyFolder) {
    fs::permissions(root(), fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                                fs::perms::others_exec);
    const auto before = test::snapshotOf(folder_.path());
    EXPECT_EQ(asOrdinaryUser([&] {
                  return outcomeOf({candidate(source_, "a.jpg", 5), candidate(source_, "x/a.jpg", 5)});
              }),
              "0 recovered, 2 failed");
    EXPECT_EQ(test::snapshotOf(folder_.path()), before);
}

TEST_F(BoundRecovery, countsAsFailedWhereTheRootCannotBeMade) {
    fs::remove(root());
    fs::permissions(folder_.path(), fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    EXPECT_EQ(asOrdinaryUser([&] { return outcomeOf({candidate(source_, "a.jpg", 5)}); }),
              "0 recovered, 1 failed");
}

TEST_F(BoundRecovery, countsASourceThatMayNotBeReadAsFailed) {
    fs::permissions(source_, fs::perms::none);
    EXPECT_EQ(asOrdinaryUser([&] { return outcomeOf({candidate(source_, "a.jpg", 5)}); }),
              "0 recovered, 1 failed");
    EXPECT_THAT(test::snapshotOf(root()), IsEmpty());
}

TEST_F(BoundRecovery, keepsAFileThatCannotBeHashedAndCountsItAsFailed) {
    folder_.write("root/a.jpg", "second");
    fs::permissions(root() / "a.jpg", fs::perms::none);
    EXPECT_EQ(asOrdinaryUser([&] { return outcomeOf({candidate(source_, "a.jpg", 5)}); }),
              "0 recovered, 1 failed");
    EXPECT_TRUE(fs::exists(root() / "a.jpg"));
}

TEST_F(BoundRecovery, countsAsRecoveredWhereOnlyTheManifestCannotBeWritten) {
    fs::create_directory(root() / "open");
    fs::permissions(root() / "open", fs::perms::all);
    fs::permissions(root(), fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    EXPECT_EQ(asOrdinaryUser([&] { return outcomeOf({candidate(source_, "open/a.jpg", 5)}); }),
              "1 recovered, 0 failed, manifest");
    EXPECT_FALSE(fs::exists(root() / "recovery-manifest.json"));
}

TEST_F(BoundRecovery, readsCachesThatMayNotBeWritten) {
    fs::permissions(source_, fs::perms::owner_read | fs::perms::others_read);
    fs::permissions(cache_.path(), fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                                       fs::perms::others_exec);
    EXPECT_EQ(
        asOrdinaryUser([&] {
            const auto report =
                CloudKitCacheRecoveryService({cache_.path()}).findRecoverable({test::missing("x/a.jpg", 5)});
            return outcomeOf(report.candidates);
        }),
        "1 recovered, 0 failed, manifest");
}

TEST_F(FailedRecovery, leavesNothingAtTheDestinationOfAFullDisk) {
    const fs::path large = cache_.write("large.mov", std::string(3'000'000, 'x'));
    const test::SmallRoom room = {.disk = 2U << 20U, .file = 2U << 20U};
    const std::string outcome = test::runOnSmallDisk(root(), room, [&]() -> std::string {
        const auto result =
            recover({candidate(large, "x/large.mov", 3'000'000), candidate(source_, "a.jpg", 5)});
        if (result.failedCount != 1 || result.recoveredCount != 1) return "counted otherwise";
        if (readFile(root() / "a.jpg") != "first") return "the smaller file is not there";
        if (!fs::is_empty(root() / "x")) return "something was left";
        return readFile(root() / "recovery-manifest.json").empty() ? "no manifest" : "";
    });
    EXPECT_EQ(outcome, "");
}

TEST_F(FailedRecovery, countsAsRecoveredWhereTheDiskFillsWithTheLastCopy) {
    // The copy takes the disk's one page; as a file it is short, which the manifest is not.
    const test::SmallRoom room = {.disk = 4'096, .file = 100};
    const std::string outcome = test::runOnSmallDisk(root(), room, [&]() -> std::string {
        const auto result = recover({candidate(source_, "a.jpg", 5)});
        if (result.recoveredCount != 1 || !result.manifestURL) return "counted otherwise";
        const auto entries = test::snapshotOf(root());
        return entries.size() == 1 && entries.count("a.jpg") == 1 ? "" : "something else was left";
    });
    EXPECT_EQ(outcome, "");
}

TEST_F(FailedRecovery, leavesNothingWhereTheDiskFailsAtTheFlush) {
    const std::string outcome = test::runInChild([&]() -> std::string {
        const int lowest = ::dup(0); // the source gets this number, the copy the next one
        ::close(lowest);
        if (!test::failSystemCall(SYS_fsync, 0, static_cast<std::uint32_t>(lowest) + 1, EIO))
            return "no filter";
        return recover({candidate(source_, "a.jpg", 5)}).failedCount == 1 ? "" : "not counted";
    });
    EXPECT_EQ(outcome, "");
    EXPECT_THAT(test::snapshotOf(root()), IsEmpty());
}

/// Where the file system does not know how to rename without replacing.
class OldFileSystem : public FailedRecovery, public testing::WithParamInterface<int> {};

TEST_P(OldFileSystem, getsItsCopiesAllTheSame) {
    fs::create_symlink("nowhere", root() / "b.jpg");
    const std::string outcome = test::runInChild([&]() -> std::string {
        constexpr unsigned int flagsArgument = 4;
        if (!test::failSystemCall(SYS_renameat2, flagsArgument, RENAME_NOREPLACE, GetParam()))
            return "no filter";
        const auto result = recover({candidate(source_, "a.jpg", 5), candidate(source_, "b.jpg", 5)});
        return result.recoveredCount == 1 && result.failedCount == 1 ? "" : "counted otherwise";
    });
    EXPECT_EQ(outcome, "");
    EXPECT_EQ(readFile(root() / "a.jpg"), "first");
    EXPECT_TRUE(fs::is_symlink(root() / "b.jpg"));
}

INSTANTIATE_TEST_SUITE_P(Refusals, OldFileSystem, testing::Values(EINVAL, ENOSYS));

} // namespace
} // namespace quillbook
