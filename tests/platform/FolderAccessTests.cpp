#include "platform/FolderAccess.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace quillbook {
namespace {

using test::TemporaryFolder;

TEST(IsWritableFolder, ownFolder) {
    const TemporaryFolder folder;
    EXPECT_TRUE(isWritableFolder(folder.path()));
}

TEST(IsWritableFolder, linkToAFolder) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "real");
    std::filesystem::create_symlink("real", folder / "link");
    EXPECT_TRUE(isWritableFolder(folder / "link"));
}

TEST(IsWritableFolder, notAFile) {
    const TemporaryFolder folder;
    EXPECT_FALSE(isWritableFolder(folder.write("a", "text")));
}

TEST(IsWritableFolder, notAMissingFolder) {
    const TemporaryFolder folder;
    EXPECT_FALSE(isWritableFolder(folder / "missing"));
}

TEST(IsWritableFolder, notAFolderWithoutTheRight) {
    const TemporaryFolder folder;
    std::filesystem::permissions(folder.path(),
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    // To the superuser every folder of a writable disk is open.
    EXPECT_EQ(isWritableFolder(folder.path()), geteuid() == 0);
    std::filesystem::permissions(folder.path(), std::filesystem::perms::owner_all);
}

} // namespace
} // namespace quillbook
