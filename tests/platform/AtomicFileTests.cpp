#include "platform/AtomicFile.h"
#include "platform/FileError.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillbook {
namespace {

using test::readFile;
using test::TemporaryFolder;

std::vector<std::string> namesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

TEST(AtomicFile, comesIntoBeingWithTheCommit) {
    const TemporaryFolder folder;
    AtomicFile file(folder / "a.json");
    file.write("one ");
    file.write("two");
    EXPECT_FALSE(std::filesystem::exists(folder / "a.json"));
    file.commit();
    EXPECT_EQ(readFile(folder / "a.json"), "one two");
}

TEST(AtomicFile, forTheOwnerAloneIsNobodyElses) {
    const TemporaryFolder folder;
    folder.write("a.json", "before");
    std::filesystem::permissions(folder / "a.json", std::filesystem::perms(0644));
    writeFileAtomically(folder / "a.json", "text", FileAccess::ownerOnly);
    EXPECT_EQ(std::filesystem::status(folder / "a.json").permissions(), std::filesystem::perms(0600));
}

TEST(AtomicFile, leavesNoTemporaryBehindTheCommit) {
    const TemporaryFolder folder;
    writeFileAtomically(folder / "a.json", "text");
    EXPECT_THAT(namesIn(folder.path()), testing::ElementsAre("a.json"));
}

TEST(AtomicFile, leavesNothingWithoutACommit) {
    const TemporaryFolder folder;
    {
        AtomicFile file(folder / "a.json");
        file.write("text");
    }
    EXPECT_THAT(namesIn(folder.path()), testing::IsEmpty());
}

TEST(AtomicFile, leavesTheOldFileWithoutACommit) {
    const TemporaryFolder folder;
    folder.write("a.json", "old");
    {
        AtomicFile file(folder / "a.json");
        file.write("new");
    }
    EXPECT_EQ(readFile(folder / "a.json"), "old");
}

TEST(AtomicFile, replacesALongerFileWhole) {
    const TemporaryFolder folder;
    folder.write("a.json", std::string(100'000, 'x'));
    writeFileAtomically(folder / "a.json", "new");
    EXPECT_EQ(readFile(folder / "a.json"), "new");
}

TEST(AtomicFile, replacesALinkAndNotWhatItLeadsTo) {
    const TemporaryFolder folder;
    folder.write("other.json", "other");
    std::filesystem::create_symlink("other.json", folder / "a.json");
    writeFileAtomically(folder / "a.json", "new");
    EXPECT_EQ(readFile(folder / "other.json"), "other");
    EXPECT_EQ(readFile(folder / "a.json"), "new");
}

TEST(AtomicFile, writesAnEmptyFile) {
    const TemporaryFolder folder;
    writeFileAtomically(folder / "a.json", "");
    EXPECT_TRUE(std::filesystem::is_regular_file(folder / "a.json"));
}

TEST(AtomicFile, throwsWhereTheFolderIsMissing) {
    const TemporaryFolder folder;
    EXPECT_THROW(writeFileAtomically(folder / "missing/a.json", "text"), FileError);
}

TEST(AtomicFile, throwsAndCleansUpWhereAFolderHasTheName) {
    const TemporaryFolder folder;
    folder.write("a.json/inside", "kept");
    EXPECT_THROW(writeFileAtomically(folder / "a.json", "text"), FileError);
    EXPECT_THAT(namesIn(folder.path()), testing::ElementsAre("a.json"));
    EXPECT_EQ(readFile(folder / "a.json/inside"), "kept");
}

TEST(AtomicFile, twoWritersOfOneFileDoNotDisturbEachOther) {
    const TemporaryFolder folder;
    AtomicFile first(folder / "a.json");
    AtomicFile second(folder / "a.json");
    first.write("first");
    second.write("second");
    second.commit();
    first.commit();
    EXPECT_EQ(readFile(folder / "a.json"), "first");
}

} // namespace
} // namespace quillbook
