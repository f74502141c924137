#include "store/LocalLibraryAttachmentLocator.h"
#include "tests/support/TemporaryFolder.h"

#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::TemporaryFolder;
using Found = std::optional<fs::path>;

/// Ada's home with her own library, which is the located one unless a test says otherwise.
class LocalLibrary : public testing::Test {
protected:
    LocalLibrary() {
        folder_.write("ada/Library/Messages/Attachments/ab/cd/x.jpg", "picture");
        folder_.write("ada/Pictures/private.jpg", "private");
        folder_.write("ben/Library/Messages/Attachments/x.jpg", "Ben's");
    }

    fs::path root() const { return folder_ / "ada/Library/Messages"; }
    Found locate(const std::string& storedPath) const {
        return LocalLibraryAttachmentLocator(root(), folder_ / "ada").locate(storedPath);
    }

    const TemporaryFolder folder_;
};

TEST_F(LocalLibrary, findsAFileBelowTheHomeFolder) {
    EXPECT_EQ(locate("~/Library/Messages/Attachments/ab/cd/x.jpg"), root() / "Attachments/ab/cd/x.jpg");
}

TEST_F(LocalLibrary, findsARelativePath) {
    EXPECT_EQ(locate("Attachments/ab/cd/x.jpg"), root() / "Attachments/ab/cd/x.jpg");
}

TEST_F(LocalLibrary, acceptsAnAbsolutePathInside) {
    EXPECT_EQ(locate(root() / "Attachments/ab/cd/x.jpg"), root() / "Attachments/ab/cd/x.jpg");
}

TEST_F(LocalLibrary, acceptsAnAbsolutePathInsideWithoutAFile) {
    EXPECT_EQ(locate(root() / "Attachments/missing.jpg"), root() / "Attachments/missing.jpg");
}

TEST_F(LocalLibrary, givesThePlaceOfAMissingFile) {
    const Found found = locate("~/Library/Messages/Attachments/missing.jpg");
    EXPECT_EQ(found, root() / "Attachments/missing.jpg");
    EXPECT_FALSE(fs::exists(*found));
}

TEST_F(LocalLibrary, givesThePlaceOfAMissingRelativeFile) {
    EXPECT_EQ(locate("Attachments/missing.jpg"), root() / "Attachments/missing.jpg");
}

TEST_F(LocalLibrary, homeFolderMeansTheRootAlsoWhereTheRootLiesElsewhere) {
    const fs::path elsewhere = folder_ / "ben/Library/Messages";
    LocalLibraryAttachmentLocator locator(elsewhere, folder_ / "ada");
    EXPECT_EQ(locator.locate("~/Library/Messages/Attachments/x.jpg"), elsewhere / "Attachments/x.jpg");
}

TEST_F(LocalLibrary, missingFileOfARootElsewhereIsNothing) {
    // Found below the root, it would count; otherwise the path means Ada's own library, which is not the
    // located one.
    LocalLibraryAttachmentLocator locator(folder_ / "ben/Library/Messages", folder_ / "ada");
    EXPECT_EQ(locator.locate("~/Library/Messages/Attachments/ab/cd/x.jpg"), std::nullopt);
}

TEST_F(LocalLibrary, tildeOfAnotherUserIsAName) {
    EXPECT_EQ(locate("~ben/x.jpg"), root() / "~ben/x.jpg");
}

TEST_F(LocalLibrary, releaseLeavesTheFile) {
    LocalLibraryAttachmentLocator locator(root(), folder_ / "ada");
    const Found found = locator.locate("Attachments/ab/cd/x.jpg");
    ASSERT_TRUE(found);
    locator.release(*found);
    EXPECT_EQ(readFile(*found), "picture");
}

TEST_F(LocalLibrary, linkedRootIsKeptAsGiven) {
    fs::create_directory_symlink(root(), folder_ / "entrance");
    LocalLibraryAttachmentLocator locator(folder_ / "entrance", folder_ / "ada");
    EXPECT_EQ(locator.locate("Attachments/ab/cd/x.jpg"), folder_ / "entrance/Attachments/ab/cd/x.jpg");
}

TEST_F(LocalLibrary, fileWithANameOfInvalidUTF8IsFound) {
    folder_.write("ada/Library/Messages/Attachments/\xFF.jpg", "picture");
    EXPECT_EQ(locate("~/Library/Messages/Attachments/\xFF.jpg"), root() / "Attachments/\xFF.jpg");
}

class LeadingOut : public LocalLibrary,
                   public testing::WithParamInterface<std::pair<const char*, std::string>> {};

TEST_P(LeadingOut, isNothing) {
    fs::create_directory_symlink("../../Pictures", root() / "link");
    fs::create_symlink("../../Pictures/private.jpg", root() / "linked.jpg");
    fs::create_symlink("loop", root() / "loop");
    EXPECT_EQ(locate(GetParam().second), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Table, LeadingOut,
    testing::Values(std::pair{"climbingOut", "~/Library/Messages/../../Pictures/private.jpg"},
                    std::pair{"climbingOutRelatively", "../../Pictures/private.jpg"},
                    std::pair{"climbingOutThroughAMissingFolder", "missing/../../../Pictures/private.jpg"},
                    std::pair{"elsewhereInTheHomeFolder", "~/Pictures/private.jpg"}, //
                    std::pair{"homeFolder", "~"},                                    //
                    std::pair{"absoluteOutside", "/etc/hostname"},
                    std::pair{"throughALinkedFolder", "~/Library/Messages/link/private.jpg"},
                    std::pair{"linkedFile", "~/Library/Messages/linked.jpg"},
                    std::pair{"parentOfALinkedFolder", "link/../Pictures/private.jpg"},
                    std::pair{"loopOfLinks", "loop/x.jpg"}, //
                    std::pair{"overlongName", std::string(300, 'x')},
                    std::pair{"overlongPath", std::string(100'000, '/') + "etc/hostname"},
                    std::pair{"zeroByte", std::string("linked.jpg\0x", 12)},
                    std::pair{"zeroByteAtTheStart", std::string("\0/etc/hostname", 14)}),
    [](const auto& test) { return std::string(test.param.first); });

TEST_F(LocalLibrary, doubledSlashBehindThePrefixStaysInside) {
    EXPECT_NE(locate("~/Library/Messages//etc/hostname"), fs::path("/etc/hostname"));
    EXPECT_EQ(locate("~/Library/Messages//Attachments/ab/cd/x.jpg")->lexically_normal(),
              root() / "Attachments/ab/cd/x.jpg");
}

} // namespace
} // namespace quillbook
