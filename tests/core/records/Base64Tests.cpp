#include "core/records/Base64.h"

#include <chrono>
#include <random>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

Data bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

struct VectorCase {
    const char* name;
    Data bytes;
    std::string text;
};

class Base64Vector : public testing::TestWithParam<VectorCase> {};

TEST_P(Base64Vector, isWritten) {
    EXPECT_EQ(base64(GetParam().bytes), GetParam().text);
}

TEST_P(Base64Vector, isReadBack) {
    EXPECT_EQ(decodeBase64(GetParam().text), GetParam().bytes);
}

// The first seven are the test vectors of RFC 4648, section 10.
INSTANTIATE_TEST_SUITE_P(Table, Base64Vector,
                         testing::Values(VectorCase{"empty", {}, ""}, //
                                         VectorCase{"f", bytesOf("f"), "Zg=="},
                                         VectorCase{"fo", bytesOf("fo"), "Zm8="},
                                         VectorCase{"foo", bytesOf("foo"), "Zm9v"},
                                         VectorCase{"foob", bytesOf("foob"), "Zm9vYg=="},
                                         VectorCase{"fooba", bytesOf("fooba"), "Zm9vYmE="},
                                         VectorCase{"foobar", bytesOf("foobar"), "Zm9vYmFy"},
                                         VectorCase{"zeros", {0, 0, 0}, "AAAA"}, //
                                         VectorCase{"ones", {255, 255, 255}, "////"},
                                         VectorCase{"plusSigns", {0xFB, 0xEF, 0xBE}, "++++"}),
                         [](const auto& test) { return std::string(test.param.name); });

class NoBase64 : public testing::TestWithParam<std::string> {};

TEST_P(NoBase64, isNothing) {
    EXPECT_EQ(decodeBase64(GetParam()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Table, NoBase64,
                         testing::Values("Z", "Zg", "Zg=", "Zm9", "Zm9vYg", "====", "=AAA", "A===", "AA=A",
                                         "Zg==Zg==", "Zg=v", " Zg=", "Zm9v\n", "Zm9v Zm8", "Zm-_", "Zm9*",
                                         "Zh==", "Zm9=", "Zm8é", std::string("Zm9\0", 4),
                                         "Zm9vZ===", "Zm9v===="));

TEST(Base64, randomBytesComeBack) {
    std::mt19937 random(20'240'501);
    for (std::size_t size = 0; size < 300; ++size) {
        Data bytes(size);
        for (auto& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        const std::string text = base64(bytes);
        ASSERT_EQ(text.size(), (size + 2) / 3 * 4);
        ASSERT_EQ(decodeBase64(text), bytes);
    }
}

TEST(Base64, textsThatAreReadAreTheOnesThatAreWritten) {
    std::mt19937 random(20'240'501);
    constexpr std::string_view characters = "AQgwBZ/+=9 ";
    int readCount = 0;
    for (int round = 0; round < 50'000; ++round) {
        std::string text(random() % 9, 'A');
        for (char& character : text)
            character = characters[random() % characters.size()];
        const auto bytes = decodeBase64(text);
        if (!bytes) continue;
        ++readCount;
        ASSERT_EQ(base64(*bytes), text);
    }
    EXPECT_GT(readCount, 1'000);
}

TEST(Base64, aPictureOfMegabytesTakesNoMoreThanSeconds) {
    const Data picture(5'000'000, 0xA7);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(decodeBase64(base64(picture)), picture);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

} // namespace
} // namespace quillbook
