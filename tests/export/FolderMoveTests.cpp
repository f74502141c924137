#include "platform/FileError.h"
#include "platform/FolderMove.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FolderSnapshot.h"
#include "tests/support/TemporaryFolder.h"

#include <cerrno>
#include <functional>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;

/// How the system refuses to rename and not to replace in one step; 0 where it does not refuse.
class MoveFolder : public testing::TestWithParam<int> {
protected:
    MoveFolder() { folder_.write("staging/attachments/a.jpg", "abc"); }

    /// What went wrong with a move in a process in which the system refuses; "moved" where nothing did.
    std::string outcomeOfMove() {
        return test::runInChild([&]() -> std::string {
            constexpr unsigned int flagsArgument = 4;
            if (GetParam() != 0 &&
                !test::failSystemCall(SYS_renameat2, flagsArgument, RENAME_NOREPLACE, GetParam())) {
                return "no filter";
            }
            try {
                moveFolder(folder_ / "staging", folder_ / "album");
            } catch (const FileError& error) {
                return error.code.message() +
                       (error.action == FileError::Action::rename ? "" : " of another action");
            }
            return "moved";
        });
    }

    void expectRefusal(int reason) {
        const auto before = test::snapshotOf(folder_.path());
        EXPECT_EQ(outcomeOfMove(), std::generic_category().message(reason));
        EXPECT_EQ(test::snapshotOf(folder_.path()), before);
    }

    TemporaryFolder folder_;
};

TEST_P(MoveFolder, givesTheFolderItsNewName) {
    EXPECT_EQ(outcomeOfMove(), "moved");
    EXPECT_EQ(test::readFile(folder_ / "album/attachments/a.jpg"), "abc");
    EXPECT_FALSE(fs::exists(folder_ / "staging"));
}

TEST_P(MoveFolder, doesNotReplaceAnEmptyFolder) {
    fs::create_directory(folder_ / "album");
    expectRefusal(EEXIST);
}

TEST_P(MoveFolder, doesNotReplaceAFolderWithSomethingInIt) {
    folder_.write("album/letter", "x");
    expectRefusal(EEXIST);
}

TEST_P(MoveFolder, doesNotReplaceAFile) {
    folder_.write("album", "x");
    expectRefusal(EEXIST);
}

TEST_P(MoveFolder, doesNotReplaceALinkToNothing) {
    fs::create_symlink("nowhere", folder_ / "album");
    expectRefusal(EEXIST);
}

TEST_P(MoveFolder, failsForAFolderThatHasGone) {
    fs::remove_all(folder_ / "staging");
    expectRefusal(ENOENT);
}

INSTANTIATE_TEST_SUITE_P(Refusals, MoveFolder, testing::Values(0, EINVAL, ENOSYS));

} // namespace
} // namespace quillbook
