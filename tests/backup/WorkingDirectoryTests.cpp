#include "backup/WorkingDirectory.h"
#include "platform/FileError.h"
#include "tests/backup/BackupFixture.h"
#include "tests/support/ChildProcess.h"

#include <csignal>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::BackupKind;
using test::TemporaryFolder;

/// A process that tells when it is ready and then lives until it is killed.
class LivingChild {
public:
    explicit LivingChild(const std::function<void()>& prepare) {
        int ends[2] = {};
        if (::pipe(ends) != 0) throw std::runtime_error("pipe failed");
        child_ = test::startChild([&] {
            prepare();
            const bool isTold = ::write(ends[1], "r", 1) == 1;
            while (isTold)
                ::pause();
        });
        ::close(ends[1]);
        char ready = 0;
        isReady_ = ::read(ends[0], &ready, 1) == 1;
        ::close(ends[0]);
    }
    ~LivingChild() { kill(); }
    LivingChild(const LivingChild&) = delete;
    LivingChild& operator=(const LivingChild&) = delete;

    bool isReady() const { return isReady_; }
    void kill() {
        if (child_ <= 0) return;
        ::kill(child_, SIGKILL);
        ::waitpid(child_, nullptr, 0);
        child_ = 0;
    }

private:
    pid_t child_ = 0;
    bool isReady_ = false;
};

fs::path onlyEntry(const fs::path& folder) {
    const std::vector<fs::path> entries{fs::directory_iterator(folder), fs::directory_iterator()};
    return entries.size() == 1 ? entries[0] : fs::path();
}

TEST(WorkingDirectory, isNamedAndMarkedAndForItsOwnerAlone) {
    const TemporaryFolder folder;
    const WorkingDirectory directory(folder.path());
    EXPECT_EQ(onlyEntry(folder.path()), directory.path());
    EXPECT_TRUE(directory.path().filename().string().starts_with("Quillbook-prepared-"));
    EXPECT_EQ(test::permissionsOf(directory.path()), fs::perms(0700));
    EXPECT_EQ(test::permissionsOf(directory.path() / ".in-use"), fs::perms(0600));
    EXPECT_EQ(FileLock::take(directory.path() / ".in-use", FileLock::Creation::forbidden).has_value(), false);
}

TEST(WorkingDirectory, givesEachOpeningItsOwn) {
    const TemporaryFolder folder;
    EXPECT_NE(WorkingDirectory(folder.path()).path(), WorkingDirectory(folder.path()).path());
}

TEST(WorkingDirectory, isRemovedOnceAndForAll) {
    const TemporaryFolder folder;
    WorkingDirectory directory(folder.path());
    folder.write(directory.path().filename().string() + "/files/a", "secret");
    directory.remove();
    directory.remove();
    EXPECT_TRUE(fs::is_empty(folder.path()));
    EXPECT_FALSE(isActiveWorkingDirectory(directory.path()));
}

TEST(WorkingDirectory, thatCannotBeMadeLeavesNothing) {
    const TemporaryFolder folder;
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  fs::permissions(folder.path(), fs::perms(0555));
                  if (!test::becomeOrdinaryUser()) return "no ordinary user";
                  try {
                      const WorkingDirectory directory(folder.path());
                  } catch (const FileError&) {
                      return fs::is_empty(folder.path()) ? "" : "left something";
                  }
                  return "made";
              }),
              "");
}

TEST(Sweep, removesWhatHasNoMarker) {
    const TemporaryFolder folder;
    folder.write("Quillbook-prepared-1/sms.db", "secret");
    fs::create_directory(folder / "Quillbook-prepared-2");
    EXPECT_EQ(removeStaleWorkingDirectories(folder.path()), 2U);
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(Sweep, removesWhatNobodyHasLocked) {
    const TemporaryFolder folder;
    folder.write("Quillbook-prepared-1/.in-use", "");
    folder.write("Quillbook-prepared-1/files/a", "secret");
    EXPECT_EQ(removeStaleWorkingDirectories(folder.path()), 1U);
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(Sweep, leavesEverythingElse) {
    const TemporaryFolder folder;
    folder.write("Quillbook/sms.db", "no working directory");
    folder.write("My Quillbook-prepared-1/sms.db", "neither");
    folder.write("Quillbook-prepared-file", "a file");
    folder.write("elsewhere/letters", "behind a link");
    fs::create_directory_symlink(folder / "elsewhere", folder / "Quillbook-prepared-link");
    const auto before = test::snapshotOf(folder.path());
    EXPECT_EQ(removeStaleWorkingDirectories(folder.path()), 0U);
    EXPECT_EQ(test::snapshotOf(folder.path()), before);
}

TEST(Sweep, leavesWhereTheMarkerCannotBeOpened) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "Quillbook-prepared-1");
    fs::create_symlink("nowhere", folder / "Quillbook-prepared-1/.in-use");
    EXPECT_EQ(removeStaleWorkingDirectories(folder.path()), 0U);
    EXPECT_TRUE(fs::exists(folder / "Quillbook-prepared-1"));
}

TEST(Sweep, leavesTheFoldersOfThisProcessWhateverTheirLockSays) {
    const TemporaryFolder folder;
    const WorkingDirectory directory(folder.path());
    fs::remove(directory.path() / ".in-use");
    EXPECT_EQ(removeStaleWorkingDirectories(folder.path()), 0U);
    EXPECT_TRUE(fs::exists(directory.path()));
}

TEST(Sweep, knowsTheFoldersOfThisProcessThroughALink) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "real");
    fs::create_directory_symlink(folder / "real", folder / "link");
    const WorkingDirectory directory(folder / "link");
    fs::remove(directory.path() / ".in-use");
    EXPECT_EQ(removeStaleWorkingDirectories(folder / "link"), 0U);
    EXPECT_EQ(removeStaleWorkingDirectories(folder / "real"), 0U);
}

TEST(Sweep, removesWhatWasNeverMarkedAnHourLater) {
    const TemporaryFolder folder;
    for (const char* name : {".Quillbook-preparing-now", ".Quillbook-preparing-then"})
        fs::create_directory(folder / name);
    fs::last_write_time(folder / ".Quillbook-preparing-then",
                        fs::file_time_type::clock::now() - std::chrono::minutes(61));
    EXPECT_EQ(removeStaleWorkingDirectories(folder.path()), 1U);
    EXPECT_EQ(onlyEntry(folder.path()).filename(), ".Quillbook-preparing-now");
}

TEST(Sweep, ofAMissingFolderIsNothing) {
    const TemporaryFolder folder;
    EXPECT_EQ(removeStaleWorkingDirectories(folder / "missing"), 0U);
}

TEST(Sweep, doesNotCountWhatCannotBeRemoved) {
    const TemporaryFolder folder;
    folder.write("Quillbook-prepared-1/sms.db", "secret");
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  for (const auto& entry : fs::recursive_directory_iterator(folder.path())) {
                      if (::geteuid() == 0 && ::lchown(entry.path().c_str(), 65'534, 65'534) != 0) return "";
                  }
                  fs::permissions(folder.path(), fs::perms(0555));
                  if (!test::becomeOrdinaryUser()) return "no ordinary user";
                  const auto count = removeStaleWorkingDirectories(folder.path());
                  return count == 0 && fs::exists(folder / "Quillbook-prepared-1") ? "" : "counted";
              }),
              "");
}

class TwoProcesses : public test::BackupFixture {};

TEST_F(TwoProcesses, leaveEachOthersFoldersAloneUntilOneIsKilled) {
    write(BackupKind::encrypted);
    LivingChild other([this] {
        static std::shared_ptr<PreparedBackup> opened;
        opened = open(BackupKind::encrypted);
        if (!opened->fileURL("MediaDomain", "Library/SMS/Attachments/00/a.txt")) ::_exit(1);
        if (removeStaleWorkingDirectories(temporary) != 0) ::_exit(1);
    });
    ASSERT_TRUE(other.isReady());
    const auto own = open(BackupKind::encrypted);
    EXPECT_EQ(removeStaleWorkingDirectories(temporary), 0U);
    EXPECT_EQ(leftovers().size(), 2U);
    EXPECT_EQ(test::runInChild([this]() -> std::string {
                  return removeStaleWorkingDirectories(temporary) == 0 ? "" : "swept what is in use";
              }),
              "");
    EXPECT_FALSE(test::placesOf(test::knownPlaintext, temporary).empty());

    other.kill();
    EXPECT_EQ(removeStaleWorkingDirectories(temporary), 1U);
    EXPECT_EQ(onlyEntry(temporary), own->workingDirectory());
    own->teardown();
    EXPECT_TRUE(test::placesOf(test::knownPlaintext, folder.path()).empty());
}

/// A process killed at any moment of an opening leaves nothing that the next start does not remove.
TEST_F(TwoProcesses, leaveNoDecryptedByteBehindAKill) {
    write(BackupKind::encrypted, [this](sample::BackupWriter& writer) {
        addMessages(writer);
        writer.addBytes("MediaDomain", "big", std::string(20'000'000, 'x') + test::knownPlaintext);
    });
    for (int moment = 0; moment < 12; ++moment) {
        const pid_t child = test::startChild([this] {
            const auto opened = open(BackupKind::encrypted);
            while (const auto file = opened->fileURL("MediaDomain", "big"))
                opened->releaseFile(*file);
        });
        ::usleep(static_cast<useconds_t>(2'000 * moment * moment / 4));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        removeStaleWorkingDirectories(temporary);
        // A process that ended before its first step leaves an empty folder, which is swept an hour later.
        for (const fs::path& left : leftovers()) {
            EXPECT_THAT(left.filename().string(), testing::StartsWith(".Quillbook-preparing-"));
            EXPECT_THAT(test::namesIn(left), testing::IsSubsetOf({".in-use"}));
        }
        EXPECT_TRUE(test::placesOf(test::knownPlaintext, temporary).empty());
    }
}

} // namespace
} // namespace quillbook
