#include "platform/FileError.h"
#include "platform/FileWriter.h"
#include "tests/support/TemporaryFolder.h"

#include <functional>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quillbook {
namespace {

using test::readFile;
using test::TemporaryFolder;

std::error_code failureOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const FileError& error) {
        return error.code;
    }
    return {};
}

TEST(FileWriter, writesBytesAndTextsInOrder) {
    const TemporaryFolder folder;
    FileWriter writer(folder / "a");
    const std::vector<std::uint8_t> bytes{0, 255, 10};
    writer.write(bytes);
    writer.write("text");
    writer.close();
    EXPECT_EQ(readFile(folder / "a"), std::string("\0\xFF\ntext", 7));
}

TEST(FileWriter, writesMoreThanABlock) {
    const TemporaryFolder folder;
    const std::string contents(3'000'001, 'x');
    FileWriter writer(folder / "a");
    writer.write(contents);
    writer.close();
    EXPECT_EQ(readFile(folder / "a"), contents);
}

TEST(FileWriter, emptiesTheFileThatStandsThere) {
    const TemporaryFolder folder;
    folder.write("a", "something longer");
    FileWriter(folder / "a").write("new");
    EXPECT_EQ(readFile(folder / "a"), "new");
}

TEST(FileWriter, holdsNothingBackFromAReader) {
    const TemporaryFolder folder;
    FileWriter writer(folder / "a");
    writer.write("text");
    EXPECT_EQ(readFile(folder / "a"), "text");
}

TEST(FileWriter, missingFolderThrows) {
    const TemporaryFolder folder;
    EXPECT_EQ(failureOf([&] { FileWriter writer(folder / "missing/a"); }),
              std::errc::no_such_file_or_directory);
}

TEST(FileWriter, folderInThePlaceThrows) {
    const TemporaryFolder folder;
    EXPECT_EQ(failureOf([&] { FileWriter writer(folder.path()); }), std::errc::is_a_directory);
}

TEST(FileWriter, pipeWithoutAReaderThrowsWithoutWaiting) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(failureOf([&] { FileWriter writer(folder / "pipe"); }), std::errc::no_such_device_or_address);
}

TEST(FileWriter, fullDiskThrows) {
    FileWriter writer("/dev/full");
    EXPECT_EQ(failureOf([&] { writer.write("text"); }), std::errc::no_space_on_device);
}

TEST(FileWriter, writingBehindTheCloseThrows) {
    const TemporaryFolder folder;
    FileWriter writer(folder / "a");
    writer.close();
    EXPECT_EQ(failureOf([&] { writer.write("text"); }), std::errc::bad_file_descriptor);
}

} // namespace
} // namespace quillbook
