#include "tools/backup/BackupCiphers.h"
#include "tools/writing/SampleError.h"

#include <gmock/gmock.h>

namespace quillbook::sample {
namespace {

Data bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

std::string hex(std::span<const std::uint8_t> bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += digits[byte >> 4U];
        text += digits[byte & 0x0FU];
    }
    return text;
}

Data ascending(std::uint8_t first, std::size_t count) {
    Data bytes;
    while (bytes.size() < count)
        bytes.push_back(static_cast<std::uint8_t>(first + bytes.size()));
    return bytes;
}

// RFC 3394, section 4.6.
TEST(BackupCiphers, wrapAKeyAsTheStandardDoes) {
    Data key;
    for (unsigned value = 0; value < 16; ++value)
        key.push_back(static_cast<std::uint8_t>(value * 0x11U));
    const Data low = ascending(0, 16);
    key.insert(key.end(), low.begin(), low.end());
    EXPECT_EQ(hex(wrappedKey(ascending(0, 32), key)),
              "28c9f404c4b810f4cbccb35cfb87f8263f5786e2d80ed326cbc7f0e71a99f43bfb988b9b7a02dd21");
}

// RFC 6070; the first block of a longer key is the same.
TEST(BackupCiphers, deriveAKeyWithSHA1AsTheStandardDoes) {
    const Data key = derivedKey(bytesOf("password"), bytesOf("salt"), 4'096, PasswordHash::sha1);
    EXPECT_EQ(hex(std::span(key).first(20)), "4b007901b765489abead49d926f721d065a429c1");
}

// RFC 7914, section 11; the first block of a longer key is the same.
TEST(BackupCiphers, deriveAKeyWithSHA256AsTheStandardDoes) {
    EXPECT_EQ(hex(derivedKey(bytesOf("passwd"), bytesOf("salt"), 1, PasswordHash::sha256)),
              "55ac046e56e3089fec1691c22544b605f94185216dde0465e68b9d57c20dacbc");
}

TEST(BackupCiphers, refuseToDeriveAKeyInNoRounds) {
    EXPECT_THROW(derivedKey(bytesOf("password"), bytesOf("salt"), 0, PasswordHash::sha1), SampleError);
}

TEST(BackupCiphers, nameAFileByTheSHA1OfItsDomainAndPath) {
    EXPECT_EQ(sha1Hex("HomeDomain-Library/SMS/sms.db"), "3d0d7e5fb2ce288813306e4d4636395e047a3d28");
}

TEST(BackupCiphers, giveEachSubjectBytesOfItsOwn) {
    EXPECT_EQ(deterministicBytes(1, "one", 20), deterministicBytes(1, "one", 20));
    EXPECT_NE(deterministicBytes(1, "one", 20), deterministicBytes(1, "other", 20));
    EXPECT_NE(deterministicBytes(1, "one", 20), deterministicBytes(2, "one", 20));
}

} // namespace
} // namespace quillbook::sample
