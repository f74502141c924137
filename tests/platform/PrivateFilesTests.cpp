#include "platform/FileError.h"
#include "platform/FileLock.h"
#include "platform/FileWriter.h"
#include "platform/FolderAccess.h"
#include "platform/FolderCreation.h"
#include "platform/UserFolders.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;

fs::perms permissionsOf(const fs::path& file) {
    return fs::symlink_status(file).permissions();
}

class PrivateFiles : public testing::TestWithParam<mode_t> {};

TEST_P(PrivateFiles, AreForTheOwnerAloneUnderAnyMask) {
    const TemporaryFolder folder;
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  ::umask(GetParam());
                  createPrivateFolder(folder / "private");
                  FileWriter writer(folder / "private/file", FileAccess::ownerOnly);
                  writer.write("text");
                  const auto lock = FileLock::take(folder / "private/lock", FileLock::Creation::allowed);
                  if (permissionsOf(folder / "private") != fs::perms(0700)) return "folder";
                  if (permissionsOf(folder / "private/file") != fs::perms(0600)) return "file";
                  if (permissionsOf(folder / "private/lock") != fs::perms(0600)) return "lock";
                  return "";
              }),
              "");
}

/// With the call that sets permissions out of order, what was given at the creation remains.
TEST_P(PrivateFiles, AreForTheOwnerAloneFromTheStart) {
    const TemporaryFolder folder;
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  ::umask(GetParam());
                  if (!test::failSystemCall(SYS_fchmod, 1, 0600, EPERM) ||
                      !test::failSystemCall(SYS_chmod, 1, 0700, EPERM))
                      return "no filter";
                  createPrivateFolder(folder / "private");
                  const FileWriter writer(folder / "file", FileAccess::ownerOnly);
                  const auto others = fs::perms::group_all | fs::perms::others_all;
                  for (const auto& entry : fs::directory_iterator(folder.path())) {
                      if ((permissionsOf(entry.path()) & others) != fs::perms::none)
                          return entry.path().string();
                  }
                  return "";
              }),
              "");
}

INSTANTIATE_TEST_SUITE_P(Masks, PrivateFiles, testing::Values(0000, 0022, 0277, 0777),
                         [](const auto& test) { return "mask" + std::to_string(test.index); });

TEST(PrivateFile, NeverTakesThePlaceOfAnother) {
    const TemporaryFolder folder;
    folder.write("file", "mine");
    fs::create_symlink("elsewhere", folder / "link");
    EXPECT_THROW(FileWriter(folder / "file", FileAccess::ownerOnly), FileError);
    EXPECT_THROW(FileWriter(folder / "link", FileAccess::ownerOnly), FileError);
    EXPECT_EQ(test::readFile(folder / "file"), "mine");
    EXPECT_FALSE(fs::exists(folder / "elsewhere"));
}

TEST(PrivateFolder, NeverTakesThePlaceOfAnother) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "there");
    EXPECT_THROW(createPrivateFolder(folder / "there"), FileError);
    EXPECT_THROW(createPrivateFolder(folder / "missing/folder"), FileError);
}

TEST(FileLock, IsHeldByOneAtATime) {
    const TemporaryFolder folder;
    auto lock = FileLock::take(folder / "lock", FileLock::Creation::allowed);
    ASSERT_TRUE(lock);
    EXPECT_FALSE(FileLock::take(folder / "lock", FileLock::Creation::allowed));
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  return FileLock::take(folder / "lock", FileLock::Creation::forbidden) ? "taken twice" : "";
              }),
              "");
    lock.reset();
    EXPECT_TRUE(FileLock::take(folder / "lock", FileLock::Creation::forbidden));
}

TEST(FileLock, MovesWithItsObject) {
    const TemporaryFolder folder;
    auto lock = FileLock::take(folder / "lock", FileLock::Creation::allowed);
    ASSERT_TRUE(lock);
    {
        const FileLock other = *std::move(lock);
        lock.reset();
        EXPECT_FALSE(FileLock::take(folder / "lock", FileLock::Creation::forbidden));
    }
    EXPECT_TRUE(FileLock::take(folder / "lock", FileLock::Creation::forbidden));
}

TEST(FileLock, MakesNoFileUnlessAllowedTo) {
    const TemporaryFolder folder;
    EXPECT_FALSE(FileLock::take(folder / "lock", FileLock::Creation::forbidden));
    EXPECT_FALSE(fs::exists(folder / "lock"));
}

TEST(FileLock, FollowsNoLinkAndWaitsForNoPipe) {
    const TemporaryFolder folder;
    folder.write("real", "");
    fs::create_symlink(folder / "real", folder / "link");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(FileLock::take(folder / "link", FileLock::Creation::allowed));
    EXPECT_TRUE(FileLock::take(folder / "pipe", FileLock::Creation::forbidden));
}

TEST(OwnFolder, IsNoFileAndNoLink) {
    const TemporaryFolder folder;
    folder.write("file", "");
    fs::create_directory_symlink(folder.path(), folder / "link");
    EXPECT_TRUE(isOwnFolder(folder.path()));
    EXPECT_FALSE(isOwnFolder(folder / "file"));
    EXPECT_FALSE(isOwnFolder(folder / "link"));
    EXPECT_FALSE(isOwnFolder(folder / "missing"));
}

TEST(OwnFolder, IsNotThatOfAnother) {
    EXPECT_EQ(test::runInChild([]() -> std::string {
                  if (!test::becomeOrdinaryUser()) return "no ordinary user";
                  return isOwnFolder("/") ? "the root belongs to another" : "";
              }),
              "");
}

TEST(TemporaryFolderOfTheSystem, IsTheOneThatTheEnvironmentNames) {
    const TemporaryFolder folder;
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  ::setenv("TMPDIR", folder.path().c_str(), 1);
                  if (temporaryFolder() != folder.path()) return "not the named one";
                  ::setenv("TMPDIR", (folder / "missing").c_str(), 1);
                  if (temporaryFolder() != "/tmp") return "a missing one";
                  ::setenv("TMPDIR", "relative", 1);
                  if (temporaryFolder() != "/tmp") return "a relative one";
                  ::unsetenv("TMPDIR");
                  return temporaryFolder() == "/tmp" ? "" : "none";
              }),
              "");
}

} // namespace
} // namespace quillbook
