#include "store/AttachmentPaths.h"
#include "tests/support/TemporaryFolder.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;

struct KeyCase {
    const char* name;
    std::string stored;
    std::optional<std::string> key;
};

class NormalizedMessagesPath : public testing::TestWithParam<KeyCase> {};

TEST_P(NormalizedMessagesPath, isTheKey) {
    EXPECT_EQ(normalizedMessagesPath(GetParam().stored), GetParam().key);
}

INSTANTIATE_TEST_SUITE_P(
    Table, NormalizedMessagesPath,
    testing::Values(
        KeyCase{"empty", "", std::nullopt}, //
        KeyCase{"belowTheHomeFolder", "~/Library/Messages/Attachments/ab/cd/x.jpg",
                "Attachments/ab/cd/x.jpg"},
        KeyCase{"absoluteInALibrary", "/Users/ada/Library/Messages/Attachments/x.jpg", "Attachments/x.jpg"},
        KeyCase{"lastLibraryCounts", "/a/Library/Messages/b/Library/Messages/c/x.jpg", "c/x.jpg"},
        KeyCase{"absoluteElsewhereKeepsTheName", "/var/folders/tmp/x.jpg", "x.jpg"},
        KeyCase{"absoluteElsewhereWithATrailingSlash", "/var/folders/x.jpg//", "x.jpg"},
        KeyCase{"libraryFolderItselfKeepsTheName", "/Users/ada/Library/Messages", "Messages"},
        KeyCase{"libraryFolderWithASlash", "/Users/ada/Library/Messages/", std::nullopt},
        KeyCase{"homeLibraryWithASlash", "~/Library/Messages/", std::nullopt},
        KeyCase{"root", "/", std::nullopt}, //
        KeyCase{"slashes", "////", std::nullopt},
        KeyCase{"relative", "Attachments/x.jpg", "Attachments/x.jpg"},
        KeyCase{"relativeWithALibraryInside", "a/Library/Messages/x.jpg", "a/Library/Messages/x.jpg"},
        KeyCase{"otherPlaceInTheHomeFolder", "~/Pictures/x.jpg", "~/Pictures/x.jpg"},
        KeyCase{"homeOfAnother", "~ben/Library/Messages/x.jpg", "~ben/Library/Messages/x.jpg"},
        KeyCase{"emptyAndDotSegments", "~/Library/Messages/.//Attachments/./x.jpg/.", "Attachments/x.jpg"},
        KeyCase{"climbingWithin", "~/Library/Messages/Attachments/ab/../cd/x.jpg", "Attachments/cd/x.jpg"},
        KeyCase{"climbingToTheStart", "~/Library/Messages/Attachments/..", std::nullopt},
        KeyCase{"climbingAbove", "~/Library/Messages/../x.jpg", std::nullopt},
        KeyCase{"climbingAboveAndBack", "Attachments/../../Attachments/x.jpg", std::nullopt},
        KeyCase{"relativeClimbing", "../x.jpg", std::nullopt}, //
        KeyCase{"absoluteClimbingName", "/var/..", std::nullopt}, KeyCase{"dotAlone", ".", std::nullopt},
        KeyCase{"threeDotsAreAName", ".../x.jpg", ".../x.jpg"},
        KeyCase{"twoDotsWithinANameAreNone", "a..b/..x/y..", "a..b/..x/y.."},
        KeyCase{"zeroByte", std::string("Attachments/x.jpg\0/../../y", 26), std::nullopt},
        KeyCase{"invalidUTF8IsKept", "Attachments/\xFF\xC0.jpg", "Attachments/\xFF\xC0.jpg"},
        KeyCase{"backslashIsNoSeparator", "..\\x.jpg", "..\\x.jpg"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(NormalizedMessagesPathOfAMegabyte, ofDotsIsNothing) {
    std::string path;
    for (int segment = 0; segment < 300'000; ++segment)
        path += "a/../";
    EXPECT_EQ(normalizedMessagesPath(path), std::nullopt);
}

TEST(NormalizedMessagesPath, isItsOwnKey) {
    const auto key = normalizedMessagesPath("/Users/ada/Library/Messages/./Attachments//ab/../x.jpg");
    ASSERT_TRUE(key);
    EXPECT_EQ(normalizedMessagesPath(*key), key);
}

struct HomeCase {
    const char* name;
    std::string stored;
    std::string expanded;
};

class ExpandedHome : public testing::TestWithParam<HomeCase> {};

TEST_P(ExpandedHome, isAsTold) {
    EXPECT_EQ(expandedHome(GetParam().stored, "/home/ada"), GetParam().expanded);
}

INSTANTIATE_TEST_SUITE_P(Table, ExpandedHome,
                         testing::Values(HomeCase{"tildeAlone", "~", "/home/ada"},
                                         HomeCase{"belowHome", "~/x/y.jpg", "/home/ada/x/y.jpg"},
                                         HomeCase{"anotherUser", "~ben/x.jpg", "~ben/x.jpg"},
                                         HomeCase{"tildeWithin", "x/~/y.jpg", "x/~/y.jpg"},
                                         HomeCase{"absolute", "/x/~", "/x/~"}, //
                                         HomeCase{"empty", "", ""}),
                         [](const auto& test) { return std::string(test.param.name); });

/// A library beside a place of somebody else, with links between them.
class IsInsideFolder : public testing::Test {
protected:
    IsInsideFolder() {
        folder_.write("library/Attachments/ab/x.jpg", "picture");
        folder_.write("library-old/x.jpg", "picture");
        folder_.write("outside/deep/secret.txt", "secret");
        link("library/leaving", "../outside");
        link("library/leavingDeep", "../outside/deep");
        link("library/leavingAbsolute", folder_ / "outside");
        link("library/file.jpg", "../outside/deep/secret.txt");
        link("library/within", "Attachments/ab");
        link("library/nowhere", "missing/place");
        link("library/nowhereOutside", "../outside/missing");
        link("library/loop", "pool");
        link("library/pool", "loop");
        link("library/self", "self/self");
        link("entrance", "library");
    }

    void link(const std::string& name, const fs::path& target) const {
        fs::create_symlink(target, folder_ / name);
    }
    bool isInside(std::string_view candidate) const {
        return isInsideFolder(folder_ / "library", (folder_ / "library").string() + std::string(candidate));
    }

    const TemporaryFolder folder_;
};

TEST_F(IsInsideFolder, folderItself) {
    EXPECT_TRUE(isInside(""));
    EXPECT_TRUE(isInside("/"));
    EXPECT_TRUE(isInside("/Attachments/.."));
}

TEST_F(IsInsideFolder, fileBelow) {
    EXPECT_TRUE(isInside("/Attachments/ab/x.jpg"));
    EXPECT_TRUE(isInside("//Attachments/./ab//x.jpg"));
}

TEST_F(IsInsideFolder, missingFileBelow) {
    EXPECT_TRUE(isInside("/Attachments/missing/y.jpg"));
}

TEST_F(IsInsideFolder, notASiblingWhoseNameBeginsAlike) {
    EXPECT_FALSE(isInside("-old/x.jpg"));
}

TEST_F(IsInsideFolder, notTheParent) {
    EXPECT_FALSE(isInside("/.."));
    EXPECT_FALSE(isInside("/../outside/deep/secret.txt"));
}

TEST_F(IsInsideFolder, climbingOutThroughMissingFolders) {
    EXPECT_FALSE(isInside("/missing/../../outside/deep/secret.txt"));
    EXPECT_FALSE(isInside("/missing/../../outside/missing"));
}

TEST_F(IsInsideFolder, leavingAndComingBack) {
    EXPECT_TRUE(isInside("/../library/Attachments/ab/x.jpg"));
    EXPECT_TRUE(isInside("/leaving/../library/Attachments/ab/x.jpg"));
}

TEST_F(IsInsideFolder, notThroughALinkThatLeaves) {
    EXPECT_FALSE(isInside("/leaving"));
    EXPECT_FALSE(isInside("/leaving/deep/secret.txt"));
    EXPECT_FALSE(isInside("/leavingAbsolute/deep/secret.txt"));
    EXPECT_FALSE(isInside("/leaving/missing"));
}

TEST_F(IsInsideFolder, notALinkedFileOutside) {
    EXPECT_FALSE(isInside("/file.jpg"));
}

TEST_F(IsInsideFolder, parentOfALinkIsTheParentOfItsTarget) {
    // As text this is library/outside; to the system it is the secret.
    EXPECT_FALSE(isInside("/leavingDeep/../deep/secret.txt"));
    EXPECT_FALSE(isInside("/leavingDeep/.."));
    EXPECT_FALSE(isInside("/within/../../../outside/deep/secret.txt"));
}

TEST_F(IsInsideFolder, linkThatStaysWithin) {
    EXPECT_TRUE(isInside("/within/x.jpg"));
    EXPECT_TRUE(isInside("/within/../ab/x.jpg"));
}

TEST_F(IsInsideFolder, linkToAMissingPlaceCountsByItsPlace) {
    EXPECT_TRUE(isInside("/nowhere"));
    EXPECT_FALSE(isInside("/nowhereOutside"));
}

TEST_F(IsInsideFolder, notThroughALoopOfLinks) {
    EXPECT_FALSE(isInside("/loop"));
    EXPECT_FALSE(isInside("/self"));
    EXPECT_FALSE(isInside("/loop/../Attachments/ab/x.jpg"));
}

TEST_F(IsInsideFolder, linkedRootIsTheSameFolder) {
    EXPECT_TRUE(isInsideFolder(folder_ / "entrance", folder_ / "library/Attachments/ab/x.jpg"));
    EXPECT_TRUE(isInsideFolder(folder_ / "library", folder_ / "entrance/Attachments/ab/x.jpg"));
}

TEST_F(IsInsideFolder, rootWithATrailingSlash) {
    EXPECT_TRUE(isInsideFolder(folder_ / "library/", folder_ / "library/Attachments/ab/x.jpg"));
    EXPECT_FALSE(isInsideFolder(folder_ / "library/", folder_ / "library-old/x.jpg"));
}

TEST_F(IsInsideFolder, everythingIsBelowTheRootFolder) {
    EXPECT_TRUE(isInsideFolder("/", folder_ / "outside"));
}

TEST_F(IsInsideFolder, relativePathsStartAtTheWorkingFolder) {
    EXPECT_TRUE(isInsideFolder(".", "missing/x.jpg"));
    EXPECT_FALSE(isInsideFolder(".", "../x.jpg"));
}

TEST_F(IsInsideFolder, notWithAZeroByte) {
    EXPECT_FALSE(isInside(std::string_view("/Attachments/ab/x.jpg\0", 22)));
    EXPECT_FALSE(isInside(std::string_view("/leaving\0/../Attachments/ab/x.jpg", 33)));
}

TEST_F(IsInsideFolder, notAnOverlongName) {
    EXPECT_FALSE(isInside("/" + std::string(256, 'x')));
}

TEST_F(IsInsideFolder, notAnOverlongPath) {
    std::string path;
    while (path.size() < 1'000'000)
        path += "/Attachments/..";
    EXPECT_FALSE(isInside(path));
}

TEST_F(IsInsideFolder, invalidUTF8IsAName) {
    folder_.write("library/\xFF\xC0.jpg", "picture");
    EXPECT_TRUE(isInside("/\xFF\xC0.jpg"));
    EXPECT_TRUE(isInside("/\xFE.jpg"));
}

TEST_F(IsInsideFolder, missingRootHoldsWhatWouldLieBelowIt) {
    EXPECT_TRUE(isInsideFolder(folder_ / "missing", folder_ / "missing/x.jpg"));
    EXPECT_FALSE(isInsideFolder(folder_ / "missing", folder_ / "missing/../x.jpg"));
}

TEST_F(IsInsideFolder, agreesWithTheSystemForLinksAndDotsInAnyMix) {
    // Every path of up to five of these components that can be opened lies inside exactly when its real place
    // does.
    const std::vector<std::string> components{"..",          "leaving", "leavingDeep", "within",
                                              "Attachments", "deep",    "library",     "ab"};
    const std::string root = folder_ / "library";
    std::vector<std::string> paths{""};
    for (std::size_t first = 0, length = 1; length <= 5; ++length) {
        const std::size_t end = paths.size();
        for (; first < end; ++first) {
            for (const std::string& component : components) {
                const std::string path = paths[first] + '/' + component;
                std::error_code failure;
                const fs::path real = fs::canonical(root + path, failure);
                if (failure) continue;
                const bool isReallyInside =
                    real == root || real.string().substr(0, root.size() + 1) == root + '/';
                ASSERT_EQ(isInside(path), isReallyInside) << path;
                paths.push_back(path);
            }
        }
    }
    EXPECT_GT(paths.size(), 100U);
}

} // namespace
} // namespace quillbook
