#include "backup/FileDecryption.h"
#include "core/records/Cancellation.h"
#include "platform/FileError.h"
#include "tests/backup/HexBytes.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TemporaryFolder.h"

#include <cerrno>
#include <chrono>
#include <limits>
#include <thread>

#include <gmock/gmock.h>
#include <openssl/evp.h>
#include <sys/syscall.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::bytesOfText;

/// Bytes that repeat nowhere near.
std::string plaintextOf(std::size_t size) {
    std::string text(size, '\0');
    std::uint32_t state = 1;
    for (char& byte : text) {
        state = state * 1'664'525U + 1'013'904'223U;
        byte = static_cast<char>(state >> 24U);
    }
    return text;
}

Data keyOf(std::size_t size) {
    Data key(size);
    for (std::size_t index = 0; index < size; ++index)
        key[index] = static_cast<std::uint8_t>(index * 11 + 3);
    return key;
}

const EVP_CIPHER* cipherOf(std::size_t keySize) {
    if (keySize == 16) return EVP_aes_128_cbc();
    return keySize == 24 ? EVP_aes_192_cbc() : EVP_aes_256_cbc();
}

/// As backups hold a file: padded to whole blocks (one more where it fills them), in CBC mode from zeros.
std::string encrypted(const std::string& plaintext, const Data& key) {
    const Data vector(16);
    std::string ciphertext(plaintext.size() + 16, '\0');
    auto* output = reinterpret_cast<unsigned char*>(ciphertext.data());
    const auto* input = reinterpret_cast<const unsigned char*>(plaintext.data());
    int size = 0;
    int last = 0;
    EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
    EXPECT_EQ(EVP_EncryptInit_ex(context, cipherOf(key.size()), nullptr, key.data(), vector.data()), 1);
    EXPECT_EQ(EVP_EncryptUpdate(context, output, &size, input, static_cast<int>(plaintext.size())), 1);
    EXPECT_EQ(EVP_EncryptFinal_ex(context, output + size, &last), 1);
    EVP_CIPHER_CTX_free(context);
    ciphertext.resize(static_cast<std::size_t>(size + last));
    return ciphertext;
}

class DecryptStream : public testing::Test {
protected:
    void decrypt(const std::string& ciphertext, std::int64_t length, const Data& key,
                 const std::stop_token& stop = {}) {
        FileReader input(folder_.write("ciphertext", ciphertext));
        FileWriter output(output_);
        decryptStream(input, output, key, length, stop);
        output.close();
    }

    std::string written() const { return test::readFile(output_); }

    test::TemporaryFolder folder_;
    fs::path output_ = folder_ / "plaintext";
    Data key_ = keyOf(32);
};

struct SizeCase {
    std::size_t keySize;
    std::size_t size;
};

void PrintTo(const SizeCase& test, std::ostream* stream) {
    *stream << "key" << test.keySize << "size" << test.size;
}

class DecryptedFile : public DecryptStream, public testing::WithParamInterface<SizeCase> {};

TEST_P(DecryptedFile, IsThePlaintextWithoutItsPadding) {
    const Data key = keyOf(GetParam().keySize);
    const std::string plaintext = plaintextOf(GetParam().size);
    decrypt(encrypted(plaintext, key), static_cast<std::int64_t>(plaintext.size()), key);
    EXPECT_TRUE(written() == plaintext);
}

std::vector<SizeCase> allSizes() {
    std::vector<SizeCase> cases;
    for (const std::size_t keySize : {16U, 24U, 32U}) {
        for (const std::size_t size :
             {std::size_t{0}, std::size_t{1}, std::size_t{5}, std::size_t{15}, std::size_t{16},
              std::size_t{17}, fileBlockSize - 17, fileBlockSize - 16, fileBlockSize - 1, fileBlockSize,
              fileBlockSize + 1, 3 * fileBlockSize + 5}) {
            cases.push_back({keySize, size});
        }
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Table, DecryptedFile, testing::ValuesIn(allSizes()),
                         testing::PrintToStringParamName());

// NIST SP 800-38A, section F.2, has vectors of CBC; its first block, with the vector taken into the
// plaintext.
TEST_F(DecryptStream, DecryptsAPublishedBlock) {
    const Data ciphertext = test::bytesOfHex("f58c4c04d6e5f1ba779eabfb5f7bfbd6");
    const Data key = test::bytesOfHex("603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4");
    decrypt({ciphertext.begin(), ciphertext.end()}, 16, key);
    Data expected = test::bytesOfHex("6bc1bee22e409f96e93d7e117393172a");
    for (std::size_t index = 0; index < expected.size(); ++index)
        expected[index] ^= static_cast<std::uint8_t>(index); // The vector is 000102…0f.
    EXPECT_EQ(bytesOfText(written()), expected);
}

TEST_F(DecryptStream, DeliversExactlyFiveBytesOfOneCipherBlock) {
    decrypt(encrypted("Hello", key_), 5, key_);
    EXPECT_EQ(written(), "Hello");
}

TEST_F(DecryptStream, DeliversPaddingWhereTheLengthTakesItIn) {
    decrypt(encrypted("Hello", key_), 7, key_);
    EXPECT_EQ(written(), "Hello\x0B\x0B");
}

TEST_F(DecryptStream, RefusesANegativeLengthBeforeAnythingIsRead) {
    FileReader input(folder_.write("ciphertext", std::string(32, 'x')));
    FileWriter output(output_);
    for (const auto length : {std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()})
        EXPECT_THROW(decryptStream(input, output, key_, length), BackupCryptoError);
    EXPECT_EQ(input.next().size(), 32U);
    EXPECT_EQ(written(), "");
}

TEST_F(DecryptStream, ReadsAndWritesNothingForALengthOfZero) {
    FileReader input(folder_.write("ciphertext", std::string(32, 'x')));
    FileWriter output(output_);
    decryptStream(input, output, key_, 0);
    EXPECT_EQ(input.next().size(), 32U);
    EXPECT_EQ(written(), "");
}

class OddKey : public DecryptStream, public testing::WithParamInterface<std::size_t> {};

TEST_P(OddKey, IsRefusedBeforeAnythingIsRead) {
    FileReader input(folder_.write("ciphertext", std::string(32, 'x')));
    FileWriter output(output_);
    EXPECT_THROW(decryptStream(input, output, keyOf(GetParam()), 5), BackupCryptoError);
    EXPECT_EQ(input.next().size(), 32U);
}

TEST_P(OddKey, IsRefusedForALengthOfZero) {
    EXPECT_THROW(decrypt("", 0, keyOf(GetParam())), BackupCryptoError);
}

INSTANTIATE_TEST_SUITE_P(Table, OddKey, testing::Values(0, 1, 15, 17, 23, 25, 31, 33, 64),
                         testing::PrintToStringParamName());

TEST_F(DecryptStream, WritesTheWholeBlocksOfACiphertextThatIsCutAtAnyByte) {
    const std::string plaintext = plaintextOf(75);
    const std::string ciphertext = encrypted(plaintext, key_);
    ASSERT_EQ(ciphertext.size(), 80U);
    for (std::size_t size = 0; size < ciphertext.size(); ++size) {
        EXPECT_THROW(decrypt(ciphertext.substr(0, size), 75, key_), BackupCryptoError) << size;
        EXPECT_EQ(written(), plaintext.substr(0, size / 16 * 16)) << size;
    }
}

TEST_F(DecryptStream, DoesNotMissACutLastBlockThatTheLengthDoesNotNeed) {
    const std::string plaintext = plaintextOf(64);
    decrypt(encrypted(plaintext, key_).substr(0, 64 + 9), 64, key_);
    EXPECT_EQ(written(), plaintext);
}

TEST_F(DecryptStream, WritesALargeCiphertextThatIsCutBeforeItThrows) {
    const std::string plaintext = plaintextOf(2 * fileBlockSize + 100);
    const std::string ciphertext = encrypted(plaintext, key_).substr(0, fileBlockSize + 39);
    EXPECT_THROW(decrypt(ciphertext, static_cast<std::int64_t>(plaintext.size()), key_), BackupCryptoError);
    EXPECT_TRUE(written() == plaintext.substr(0, fileBlockSize + 32));
}

TEST_F(DecryptStream, WritesAllTheCiphertextBeforeItThrowsForAnAbsurdLength) {
    const std::string plaintext = plaintextOf(31);
    EXPECT_THROW(decrypt(encrypted(plaintext, key_), std::numeric_limits<std::int64_t>::max(), key_),
                 BackupCryptoError);
    EXPECT_EQ(written(), plaintext + '\x01');
}

TEST_F(DecryptStream, LeavesCiphertextBeyondTheLengthUnread) {
    const std::string plaintext = plaintextOf(2 * fileBlockSize);
    FileReader input(folder_.write("ciphertext", encrypted(plaintext, key_)));
    FileWriter output(output_);
    decryptStream(input, output, key_, static_cast<std::int64_t>(fileBlockSize));
    EXPECT_EQ(input.next().size(), fileBlockSize);
    EXPECT_TRUE(written() == plaintext.substr(0, fileBlockSize));
}

TEST_F(DecryptStream, PassesAReadErrorOn) {
    const std::string ciphertext = encrypted("Hello", key_);
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  if (!test::failSystemCall(SYS_read, 2, leastFileBlockSize, EIO)) return "no filter";
                  try {
                      decrypt(ciphertext, 5, key_);
                  } catch (const FileError& error) {
                      const bool isOfInput = error.file == folder_ / "ciphertext";
                      return error.action == FileError::Action::read && isOfInput ? "" : error.description();
                  }
                  return "nothing was thrown";
              }),
              "");
}

TEST_F(DecryptStream, PassesAWriteErrorOn) {
    const std::string ciphertext = encrypted(plaintextOf(3 * fileBlockSize), key_);
    const auto source = folder_.write("ciphertext", ciphertext);
    FileReader input(source);
    FileWriter output(output_);
    const test::FileSizeLimit limit(2 * fileBlockSize);
    try {
        decryptStream(input, output, key_, static_cast<std::int64_t>(3 * fileBlockSize));
        FAIL() << "nothing was thrown";
    } catch (const FileError& error) {
        EXPECT_EQ(error.action, FileError::Action::write);
        EXPECT_EQ(error.file, output_);
    }
}

TEST_F(DecryptStream, PassesAFullDiskOn) {
    FileReader input(folder_.write("ciphertext", encrypted("Hello", key_)));
    FileWriter output("/dev/full");
    try {
        decryptStream(input, output, key_, 5);
        FAIL() << "nothing was thrown";
    } catch (const FileError& error) {
        EXPECT_EQ(error.code, std::errc::no_space_on_device);
    }
}

TEST_F(DecryptStream, WritesNothingOnceStopWasRequested) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(decrypt(encrypted("Hello", key_), 5, key_, stop.get_token()), CancellationError);
    EXPECT_EQ(written(), "");
}

TEST_F(DecryptStream, StopsWithinAFileWithoutEnd) {
    const auto file = folder_.write("ciphertext", "");
    constexpr auto size = std::uintmax_t{1} << 40U;
    fs::resize_file(file, size);
    FileReader input(file);
    FileWriter output("/dev/null");
    std::stop_source stop;
    const std::jthread canceller([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        stop.request_stop();
    });
    EXPECT_THROW(decryptStream(input, output, key_, static_cast<std::int64_t>(size), stop.get_token()),
                 CancellationError);
}

TEST_F(DecryptStream, RunsOnSeveralThreadsAtOnce) {
    const std::string plaintext = plaintextOf(fileBlockSize + 77);
    const auto source = folder_.write("ciphertext", encrypted(plaintext, key_));
    std::vector<std::thread> threads;
    for (const char* name : {"a", "b", "c", "d"}) {
        threads.emplace_back([&, name] {
            FileReader input(source);
            FileWriter output(folder_ / name);
            decryptStream(input, output, key_, static_cast<std::int64_t>(plaintext.size()));
        });
    }
    for (auto& thread : threads)
        thread.join();
    for (const char* name : {"a", "b", "c", "d"})
        EXPECT_TRUE(test::readFile(folder_ / name) == plaintext) << name;
}

TEST(BackupCryptoError, HasTheWordsOfAnUnknownError) {
    EXPECT_EQ(BackupCryptoError().description(), "An unexpected error occurred.");
}

} // namespace
} // namespace quillbook
