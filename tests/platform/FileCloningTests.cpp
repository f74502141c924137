#include "platform/FileCloning.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <iostream>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/vfs.h>

namespace quillbook {
namespace {

using test::readFile;
using test::TemporaryFolder;

bool succeeds(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

/// A file system with clones, in a file that is mounted as a disk; only the superuser may make one, and not
/// everywhere.
class CloningVolume {
public:
    CloningVolume() {
        const std::string image = folder_ / "image";
        std::filesystem::create_directory(mountPoint());
        isMounted_ = succeeds("truncate -s 512M '" + image + "'") &&
                     succeeds("PATH=$PATH:/usr/sbin:/sbin mkfs.xfs -q -m reflink=1 '" + image + "'") &&
                     succeeds("mount -o loop '" + image + "' '" + mountPoint().string() + "'");
        if (!isMounted_) std::cout << "Not checked: no file system with clones can be mounted here.\n";
    }
    ~CloningVolume() {
        if (isMounted_) succeeds("umount '" + mountPoint().string() + "'");
    }
    CloningVolume(const CloningVolume&) = delete;
    CloningVolume& operator=(const CloningVolume&) = delete;

    bool isMounted() const { return isMounted_; }
    std::filesystem::path write(const std::string& name, std::string_view contents) const {
        return folder_.write("mounted/" + name, contents);
    }
    std::filesystem::path operator/(std::string_view name) const { return mountPoint() / name; }

private:
    std::filesystem::path mountPoint() const { return folder_ / "mounted"; }

    TemporaryFolder folder_;
    bool isMounted_ = false;
};

/// ext4, tmpfs and overlays have no clones.
bool hasNoClones(const std::filesystem::path& folder) {
    constexpr long ext4 = 0xEF53;
    constexpr long tmpfs = 0x01021994;
    constexpr long overlay = 0x794C7630;
    struct statfs status {};
    if (::statfs(folder.c_str(), &status) != 0) return false;
    return status.f_type == ext4 || status.f_type == tmpfs || status.f_type == overlay;
}

TEST(CloneFile, isFalseAndLeavesNothingWhereThereAreNoClones) {
    const TemporaryFolder folder;
    if (!hasNoClones(folder.path())) {
        std::cout << "Not checked: the temporary folder's file system may have clones.\n";
        return;
    }
    EXPECT_FALSE(cloneFile(folder.write("a", "text"), folder / "b"));
    EXPECT_FALSE(std::filesystem::exists(folder / "b"));
    EXPECT_EQ(readFile(folder / "a"), "text");
}

TEST(CloneFile, isFalseForAMissingFile) {
    const TemporaryFolder folder;
    EXPECT_FALSE(cloneFile(folder / "missing", folder / "b"));
    EXPECT_FALSE(std::filesystem::exists(folder / "b"));
}

TEST(CloneFile, leavesWhatStandsAtTheDestination) {
    const TemporaryFolder folder;
    folder.write("b", "other");
    EXPECT_FALSE(cloneFile(folder.write("a", "text"), folder / "b"));
    EXPECT_EQ(readFile(folder / "b"), "other");
}

TEST(CloneFile, isFalseForAFolderAndAPipe) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "folder");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(cloneFile(folder / "folder", folder / "b"));
    EXPECT_FALSE(cloneFile(folder / "pipe", folder / "b"));
    EXPECT_FALSE(std::filesystem::exists(folder / "b"));
}

TEST(CloneFile, isFalseWhereTheDestinationsFolderIsMissing) {
    const TemporaryFolder folder;
    EXPECT_FALSE(cloneFile(folder.write("a", "text"), folder / "missing/b"));
}

TEST(CloneFile, makesAnEqualFileWhereThereAreClones) {
    const CloningVolume volume;
    if (!volume.isMounted()) return;
    const std::string contents(3'000'001, 'x');
    ASSERT_TRUE(cloneFile(volume.write("a", contents), volume / "b"));
    EXPECT_EQ(readFile(volume / "b"), contents);
}

TEST(CloneFile, cloneSharesItsBlocksWithTheOriginal) {
    const CloningVolume volume;
    if (!volume.isMounted()) return;
    const auto source = volume.write("a", std::string(64'000'000, 'x'));
    succeeds("sync -f '" + source.string() + "'");
    const auto before = std::filesystem::space(source).available;
    ASSERT_TRUE(cloneFile(source, volume / "b"));
    succeeds("sync -f '" + source.string() + "'");
    EXPECT_LT(before - std::filesystem::space(source).available, 8'000'000U);
}

TEST(CloneFile, cloneStaysAsItIsWhenTheOriginalChanges) {
    const CloningVolume volume;
    if (!volume.isMounted()) return;
    ASSERT_TRUE(cloneFile(volume.write("a", "old"), volume / "b"));
    volume.write("a", "new");
    EXPECT_EQ(readFile(volume / "b"), "old");
}

TEST(CloneFile, isFalseBetweenTwoVolumes) {
    const CloningVolume volume;
    if (!volume.isMounted()) return;
    const TemporaryFolder folder;
    EXPECT_FALSE(cloneFile(volume.write("a", "text"), folder / "b"));
    EXPECT_FALSE(std::filesystem::exists(folder / "b"));
}

TEST(CloneFile, clonesAnEmptyFile) {
    const CloningVolume volume;
    if (!volume.isMounted()) return;
    ASSERT_TRUE(cloneFile(volume.write("a", ""), volume / "b"));
    EXPECT_EQ(std::filesystem::file_size(volume / "b"), 0U);
}

} // namespace
} // namespace quillbook
