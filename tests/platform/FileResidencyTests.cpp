#include "platform/FileResidency.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quillbook {
namespace {

using test::TemporaryFolder;

TEST(IsLocallyPresent, fileWithBytes) {
    const TemporaryFolder folder;
    EXPECT_TRUE(isLocallyPresent(folder.write("a.jpg", "picture")));
}

TEST(IsLocallyPresent, notAFileOfLengthZero) {
    const TemporaryFolder folder;
    EXPECT_FALSE(isLocallyPresent(folder.write("a.jpg", "")));
}

TEST(IsLocallyPresent, notAFileWithALengthAndNoBlocks) {
    const TemporaryFolder folder;
    const auto file = folder.write("a.jpg", "");
    std::filesystem::resize_file(file, 1'000'000);
    EXPECT_FALSE(isLocallyPresent(file));
}

TEST(IsLocallyPresent, fileWithAHole) {
    const TemporaryFolder folder;
    const auto file = folder.write("a.jpg", "picture");
    std::filesystem::resize_file(file, 1'000'000);
    EXPECT_TRUE(isLocallyPresent(file));
}

TEST(IsLocallyPresent, notAMissingFile) {
    const TemporaryFolder folder;
    EXPECT_FALSE(isLocallyPresent(folder / "missing.jpg"));
}

TEST(IsLocallyPresent, notAPathThroughAFile) {
    const TemporaryFolder folder;
    folder.write("a.jpg", "picture");
    EXPECT_FALSE(isLocallyPresent(folder / "a.jpg/b.jpg"));
}

TEST(IsLocallyPresent, linkToAFileWithBytes) {
    const TemporaryFolder folder;
    folder.write("a.jpg", "picture");
    std::filesystem::create_symlink("a.jpg", folder / "link.jpg");
    EXPECT_TRUE(isLocallyPresent(folder / "link.jpg"));
}

TEST(IsLocallyPresent, notALinkToAnEmptyFile) {
    const TemporaryFolder folder;
    folder.write("a.jpg", "");
    std::filesystem::create_symlink("a.jpg", folder / "link.jpg");
    EXPECT_FALSE(isLocallyPresent(folder / "link.jpg"));
}

TEST(IsLocallyPresent, notALinkToNothing) {
    const TemporaryFolder folder;
    std::filesystem::create_symlink("missing.jpg", folder / "link.jpg");
    EXPECT_FALSE(isLocallyPresent(folder / "link.jpg"));
}

TEST(IsLocallyPresent, notALinkToItself) {
    const TemporaryFolder folder;
    std::filesystem::create_symlink("link.jpg", folder / "link.jpg");
    EXPECT_FALSE(isLocallyPresent(folder / "link.jpg"));
}

TEST(IsLocallyPresent, notAnOverlongName) {
    const TemporaryFolder folder;
    EXPECT_FALSE(isLocallyPresent(folder / std::string(10'000, 'x')));
}

} // namespace
} // namespace quillbook
