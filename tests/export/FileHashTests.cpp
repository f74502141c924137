#include "core/records/Cancellation.h"
#include "export/FileHash.h"
#include "platform/FileError.h"
#include "platform/FileReader.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

using test::TemporaryFolder;

constexpr const char* emptyDigest = "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";

std::span<const std::uint8_t> bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string digestOf(std::string_view text) {
    SHA256 digest;
    digest.update(bytesOf(text));
    return digest.hex();
}

struct VectorCase {
    const char* name;
    std::string message;
    const char* digest;
};

class KnownDigest : public testing::TestWithParam<VectorCase> {};

TEST_P(KnownDigest, isThatOfTheStandard) {
    EXPECT_EQ(digestOf(GetParam().message), GetParam().digest);
}

TEST_P(KnownDigest, isTheSameForAFile) {
    const TemporaryFolder folder;
    EXPECT_EQ(hashFile(folder.write("file", GetParam().message), {}), GetParam().digest);
}

// The example messages published with FIPS 180-4.
INSTANTIATE_TEST_SUITE_P(
    Table, KnownDigest,
    testing::Values(
        VectorCase{"empty", "", emptyDigest},
        VectorCase{"oneBlock", "abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        VectorCase{"twoBlocks", "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
                   "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
        VectorCase{
            "longerThanTwoBlocks",
            "abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlm"
            "nopqrsmnopqrstnopqrstu",
            "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1"},
        VectorCase{"aMillionLetters", std::string(1'000'000, 'a'),
                   "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(SHA256, doesNotDependOnTheCutIntoPieces) {
    const std::string text(1'000, 'q');
    SHA256 digest;
    for (std::size_t start = 0; start < text.size(); start += 7)
        digest.update(bytesOf(std::string_view(text).substr(start, 7)));
    EXPECT_EQ(digest.hex(), digestOf(text));
}

class HashOfSize : public testing::TestWithParam<std::size_t> {};

TEST_P(HashOfSize, coversTheWholeFile) {
    const TemporaryFolder folder;
    std::string contents(GetParam(), '\0');
    for (std::size_t index = 0; index < contents.size(); ++index)
        contents[index] = static_cast<char>(index % 251);
    EXPECT_EQ(hashFile(folder.write("file", contents), {}), digestOf(contents));
}

INSTANTIATE_TEST_SUITE_P(RoundOneBlock, HashOfSize,
                         testing::Values(1, fileBlockSize - 1, fileBlockSize, fileBlockSize + 1,
                                         2 * fileBlockSize));

TEST(HashFile, throwsFileErrorForAnAbsentFile) {
    const TemporaryFolder folder;
    EXPECT_THROW(hashFile(folder / "absent", {}), FileError);
}

TEST(HashFile, throwsFileErrorForAFolder) {
    const TemporaryFolder folder;
    EXPECT_THROW(hashFile(folder.path(), {}), FileError);
}

TEST(HashFile, stopsBeforeTheFirstBlockOnceStopped) {
    const TemporaryFolder folder;
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(hashFile(folder.write("file", "x"), stop.get_token()), CancellationError);
}

TEST(HashFile, looksForAStopOnlyWhereThereIsABlock) {
    const TemporaryFolder folder;
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(hashFile(folder.write("file", ""), stop.get_token()), emptyDigest);
}

TEST(HashFile, stopsInTheMiddleOfAFileThatWouldTakeMinutes) {
    const TemporaryFolder folder;
    const auto file = folder.write("file", "x");
    std::filesystem::resize_file(file, std::uintmax_t{1} << 40U); // a hole, which takes no room
    std::stop_source stop;
    std::chrono::steady_clock::time_point stoppedAt;
    std::jthread canceller([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        stoppedAt = std::chrono::steady_clock::now();
        stop.request_stop();
    });
    EXPECT_THROW(hashFile(file, stop.get_token()), CancellationError);
    canceller.join();
    EXPECT_LT(std::chrono::steady_clock::now() - stoppedAt, std::chrono::seconds(5));
}

} // namespace
} // namespace quillbook
