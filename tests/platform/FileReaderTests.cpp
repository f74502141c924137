#include "platform/FileError.h"
#include "platform/FileReader.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace quillbook {
namespace {

using test::TemporaryFolder;

std::vector<std::size_t> blockSizes(const std::filesystem::path& file) {
    FileReader reader(file);
    std::vector<std::size_t> sizes;
    for (auto block = reader.next(); !block.empty(); block = reader.next())
        sizes.push_back(block.size());
    return sizes;
}

struct BlocksCase {
    const char* name;
    std::size_t fileSize;
    std::vector<std::size_t> blocks;
};

class FileReaderBlocks : public testing::TestWithParam<BlocksCase> {};

TEST_P(FileReaderBlocks, areFullButForTheLast) {
    const TemporaryFolder folder;
    EXPECT_EQ(blockSizes(folder.write("a", std::string(GetParam().fileSize, 'x'))), GetParam().blocks);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FileReaderBlocks,
    testing::Values(BlocksCase{"emptyFile", 0, {}}, //
                    BlocksCase{"oneByte", 1, {1}},
                    BlocksCase{"oneByteBelowTheLeast", leastFileBlockSize - 1, {leastFileBlockSize - 1}},
                    BlocksCase{"theLeast", leastFileBlockSize, {leastFileBlockSize}},
                    BlocksCase{"oneByteAboveTheLeast", leastFileBlockSize + 1, {leastFileBlockSize + 1}},
                    BlocksCase{"oneByteBelowABlock", fileBlockSize - 1, {fileBlockSize - 1}},
                    BlocksCase{"oneBlock", fileBlockSize, {fileBlockSize}},
                    BlocksCase{"oneByteMore", fileBlockSize + 1, {fileBlockSize, 1}},
                    BlocksCase{"oneByteLess", 2 * fileBlockSize - 1, {fileBlockSize, fileBlockSize - 1}}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(FileReader, followsALinkUnlessItIsToRefuseIt) {
    const TemporaryFolder folder;
    folder.write("a", "contents");
    std::filesystem::create_symlink("a", folder / "link");
    EXPECT_EQ(FileReader(folder / "link").next().size(), 8U);
    EXPECT_THROW(FileReader(folder / "link", LastLink::refused), FileError);
    EXPECT_EQ(FileReader(folder / "a", LastLink::refused).next().size(), 8U);
}

TEST(FileReader, givesTheBytesInOrder) {
    const TemporaryFolder folder;
    std::string contents;
    for (int number = 0; contents.size() < 3 * fileBlockSize; ++number)
        contents += std::to_string(number) + '\n';
    EXPECT_EQ(readWholeFile(folder.write("a", contents)), contents);
}

TEST(FileReader, staysEmptyBehindTheEnd) {
    const TemporaryFolder folder;
    FileReader reader(folder.write("a", "x"));
    reader.next();
    EXPECT_TRUE(reader.next().empty());
    EXPECT_TRUE(reader.next().empty());
}

void append(const std::filesystem::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary | std::ios::app) << text;
}

TEST(FileReader, givesFullBlocksOfAFileThatGrowsAfterItWasOpened) {
    const TemporaryFolder folder;
    const auto file = folder.write("a", "start");
    FileReader reader(file);
    append(file, std::string(fileBlockSize, 'x'));
    const auto first = reader.next();
    EXPECT_EQ(first.size(), fileBlockSize);
    EXPECT_TRUE(std::equal(first.begin(), first.begin() + 6, "startx"));
    EXPECT_EQ(reader.next().size(), 5U);
    EXPECT_TRUE(reader.next().empty());
}

TEST(FileReader, givesWhatWasAddedBehindTheEnd) {
    const TemporaryFolder folder;
    const auto file = folder.write("a", "start");
    FileReader reader(file);
    EXPECT_EQ(reader.next().size(), 5U);
    append(file, std::string(leastFileBlockSize + 7, 'x'));
    EXPECT_EQ(reader.next().size(), leastFileBlockSize + 7);
}

TEST(FileReader, endsEarlyWithAFileThatWasCutAfterItWasOpened) {
    const TemporaryFolder folder;
    const auto file = folder.write("a", std::string(3 * leastFileBlockSize, 'x'));
    FileReader reader(file);
    std::filesystem::resize_file(file, 10);
    EXPECT_EQ(reader.next().size(), 10U);
    EXPECT_TRUE(reader.next().empty());
}

/// A program that waits until it is destroyed. The words it was started with stand in a file of /proc.
class WaitingProgram {
public:
    explicit WaitingProgram(const std::string& lastWord) {
        if (::pipe2(input_.data(), O_CLOEXEC) != 0 || ::pipe2(output_.data(), O_CLOEXEC) != 0) return;
        child_ = test::startChild([&] {
            ::dup2(input_[0], STDIN_FILENO);
            ::dup2(output_[1], STDOUT_FILENO);
            ::execl("/bin/sh", "sh", "-c", script, "sh", lastWord.c_str(), static_cast<char*>(nullptr));
        });
        ::close(std::exchange(input_[0], -1));
        ::close(std::exchange(output_[1], -1));
        char line = 0;
        hasBegun_ = ::read(output_[0], &line, 1) == 1;
    }
    ~WaitingProgram() {
        for (const int end : {input_[0], input_[1], output_[0], output_[1]})
            ::close(end);
        EXPECT_TRUE(child_ < 0 || test::awaitChild(child_));
    }
    WaitingProgram(const WaitingProgram&) = delete;
    WaitingProgram& operator=(const WaitingProgram&) = delete;

    bool hasBegun() const { return hasBegun_; }
    std::filesystem::path commandLine() const { return "/proc/" + std::to_string(child_) + "/cmdline"; }
    /// Each word ends with a zero byte.
    static std::string wordsBefore() {
        std::string words;
        for (const char* word : {"sh", "-c", script, "sh"})
            words.append(word).push_back('\0');
        return words;
    }

private:
    static constexpr const char* script = "echo; read line; exit 0";

    std::array<int, 2> input_ = {-1, -1};
    std::array<int, 2> output_ = {-1, -1};
    pid_t child_ = -1;
    bool hasBegun_ = false;
};

TEST(FileReader, readsAFileThatDoesNotSayItsSize) {
    const std::string word(3 * leastFileBlockSize, 'x');
    const WaitingProgram program(word);
    ASSERT_TRUE(program.hasBegun());
    EXPECT_EQ(std::filesystem::file_size(program.commandLine()), 0U);
    EXPECT_EQ(readWholeFile(program.commandLine()), WaitingProgram::wordsBefore() + word + '\0');
}

TEST(FileReader, followsALink) {
    const TemporaryFolder folder;
    folder.write("a", "text");
    std::filesystem::create_symlink("a", folder / "link");
    EXPECT_EQ(readWholeFile(folder / "link"), "text");
}

TEST(FileReader, missingFileThrowsWithTheSystemsReason) {
    const TemporaryFolder folder;
    try {
        FileReader reader(folder / "missing");
        FAIL() << "nothing was thrown";
    } catch (const FileError& error) {
        EXPECT_EQ(error.action, FileError::Action::open);
        EXPECT_EQ(error.code, std::errc::no_such_file_or_directory);
    }
}

TEST(FileReader, errorNamesTheFile) {
    const TemporaryFolder folder;
    try {
        FileReader reader(folder / "Letter from Ada.txt");
        FAIL() << "nothing was thrown";
    } catch (const FileError& error) {
        EXPECT_NE(error.description().find("“Letter from Ada.txt” could not be opened: "), std::string::npos);
    }
}

TEST(FileReader, errorForANameOfInvalidBytesIsValidText) {
    const TemporaryFolder folder;
    try {
        FileReader reader(folder / "\xFF.txt");
        FAIL() << "nothing was thrown";
    } catch (const FileError& error) {
        EXPECT_NE(error.description().find("“\uFFFD.txt”"), std::string::npos);
    }
}

TEST(FileReader, folderIsRefused) {
    const TemporaryFolder folder;
    EXPECT_THROW(FileReader{folder.path()}, FileError);
}

TEST(FileReader, pipeIsRefusedWithoutWaiting) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_THROW(FileReader{folder / "pipe"}, FileError);
}

TEST(FileReader, endlessDeviceIsRefused) {
    EXPECT_THROW(FileReader{"/dev/zero"}, FileError);
}

TEST(FileReader, socketIsRefused) {
    const TemporaryFolder folder;
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(descriptor, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string name = folder / "socket";
    ASSERT_LT(name.size(), sizeof address.sun_path);
    name.copy(address.sun_path, name.size());
    ASSERT_EQ(bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_THROW(FileReader{name}, FileError);
    close(descriptor);
}

TEST(ReadWholeFile, takesAFileOfExactlyTheGreatestSize) {
    const TemporaryFolder folder;
    EXPECT_EQ(readWholeFile(folder.write("a", "12345"), 5), "12345");
}

TEST(ReadWholeFile, refusesOneByteMore) {
    const TemporaryFolder folder;
    try {
        readWholeFile(folder.write("a", "123456"), 5);
        FAIL() << "nothing was thrown";
    } catch (const FileError& error) {
        EXPECT_EQ(error.code, std::errc::file_too_large);
    }
}

TEST(ReadWholeFile, refusesAFileThatOutgrowsTheLimitInALaterBlock) {
    const TemporaryFolder folder;
    EXPECT_THROW(readWholeFile(folder.write("a", std::string(fileBlockSize + 1, 'x')), fileBlockSize),
                 FileError);
}

TEST(ReadWholeFile, refusesAnEndlessSparseFileWithoutReadingIt) {
    const TemporaryFolder folder;
    const auto file = folder.write("a", "");
    std::filesystem::resize_file(file, std::uintmax_t{1} << 40U);
    EXPECT_THROW(readWholeFile(file, 1'000), FileError);
}

} // namespace
} // namespace quillbook
