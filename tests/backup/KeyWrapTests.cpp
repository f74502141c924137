#include "backup/KeyWrap.h"
#include "core/records/Cancellation.h"
#include "tests/backup/HexBytes.h"

#include <gmock/gmock.h>
#include <openssl/evp.h>

namespace quillbook {
namespace {

using test::bytesOfHex;
using testing::ElementsAreArray;

struct WrapCase {
    const char* name;
    const char* key;
    const char* data;
    const char* wrapped;
};

constexpr const char* key128 = "000102030405060708090A0B0C0D0E0F";
constexpr const char* key192 = "000102030405060708090A0B0C0D0E0F1011121314151617";
constexpr const char* key256 = "000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F";
constexpr const char* data128 = "00112233445566778899AABBCCDDEEFF";
constexpr const char* data192 = "00112233445566778899AABBCCDDEEFF0001020304050607";
constexpr const char* data256 = "00112233445566778899AABBCCDDEEFF000102030405060708090A0B0C0D0E0F";
constexpr const char* wrapped256 =
    "28C9F404C4B810F4CBCCB35CFB87F8263F5786E2D80ED326CBC7F0E71A99F43BFB988B9B7A02DD21";

class PublishedKeyWrap : public testing::TestWithParam<WrapCase> {};

TEST_P(PublishedKeyWrap, IsUnwrapped) {
    const auto unwrapped = aesKeyUnwrap(bytesOfHex(GetParam().key), bytesOfHex(GetParam().wrapped));
    ASSERT_TRUE(unwrapped);
    EXPECT_THAT(*unwrapped, ElementsAreArray(bytesOfHex(GetParam().data)));
}

TEST_P(PublishedKeyWrap, GivesNothingOnceAnyByteIsChanged) {
    const Data key = bytesOfHex(GetParam().key);
    Data wrapped = bytesOfHex(GetParam().wrapped);
    for (std::uint8_t& byte : wrapped) {
        byte ^= 0x01;
        EXPECT_FALSE(aesKeyUnwrap(key, wrapped)) << "byte " << &byte - wrapped.data();
        byte ^= 0x01;
    }
}

TEST_P(PublishedKeyWrap, GivesNothingUnderAnotherKey) {
    Data key = bytesOfHex(GetParam().key);
    key.back() ^= 0x80;
    EXPECT_FALSE(aesKeyUnwrap(key, bytesOfHex(GetParam().wrapped)));
}

// RFC 3394, sections 4.1 to 4.6.
INSTANTIATE_TEST_SUITE_P(
    Table, PublishedKeyWrap,
    testing::Values(
        WrapCase{"data128WithKey128", key128, data128, "1FA68B0A8112B447AEF34BD8FB5A7B829D3E862371D2CFE5"},
        WrapCase{"data128WithKey192", key192, data128, "96778B25AE6CA435F92B5B97C050AED2468AB8A17AD84E5D"},
        WrapCase{"data128WithKey256", key256, data128, "64E8C3F9CE0F5BA263E9777905818A2A93C8191E7D6E8AE7"},
        WrapCase{"data192WithKey192", key192, data192,
                 "031D33264E15D33268F24EC260743EDCE1C6C7DDEE725A936BA814915C6762D2"},
        WrapCase{"data192WithKey256", key256, data192,
                 "A8F9BC1612C68B3FF6E6F4FBE30E71E4769C8B80A32CB8958CD5D17D6B254DA1"},
        WrapCase{"data256WithKey256", key256, data256, wrapped256}),
    [](const auto& test) { return std::string(test.param.name); });

class WrappedLength : public testing::TestWithParam<std::size_t> {};

TEST_P(WrappedLength, ThatIsNoneGivesNothing) {
    EXPECT_FALSE(aesKeyUnwrap(bytesOfHex(key256), Data(GetParam(), 0xA6)));
}

INSTANTIATE_TEST_SUITE_P(Table, WrappedLength,
                         testing::Values(0, 1, 7, 8, 15, 16, 17, 23, 25, 31, 33, 39, 41),
                         testing::PrintToStringParamName());

TEST(AESKeyUnwrap, GivesNothingWhereAWrapIsCutOrProlonged) {
    const Data key = bytesOfHex(key256);
    const Data wrapped = bytesOfHex(wrapped256);
    for (std::size_t size = 0; size < wrapped.size(); ++size)
        EXPECT_FALSE(aesKeyUnwrap(key, std::span(wrapped).first(size))) << size;
    Data longer = wrapped;
    longer.resize(wrapped.size() + 8);
    EXPECT_FALSE(aesKeyUnwrap(key, longer));
}

class KeyLength : public testing::TestWithParam<std::size_t> {};

TEST_P(KeyLength, ThatAESDoesNotHaveGivesNothing) {
    EXPECT_FALSE(aesKeyUnwrap(Data(GetParam(), 1), bytesOfHex(wrapped256)));
}

INSTANTIATE_TEST_SUITE_P(Table, KeyLength, testing::Values(0, 1, 8, 15, 17, 23, 25, 31, 33, 64),
                         testing::PrintToStringParamName());

/// What libcrypto's own wrap makes of the data.
Data wrap(const Data& key, const Data& data) {
    Data wrapped(data.size() + 16);
    int size = 0;
    EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
    EVP_CIPHER_CTX_set_flags(context, EVP_CIPHER_CTX_FLAG_WRAP_ALLOW);
    EXPECT_EQ(EVP_EncryptInit_ex(context, EVP_aes_256_wrap(), nullptr, key.data(), nullptr), 1);
    EXPECT_EQ(EVP_EncryptUpdate(context, wrapped.data(), &size, data.data(), static_cast<int>(data.size())),
              1);
    EVP_CIPHER_CTX_free(context);
    wrapped.resize(static_cast<std::size_t>(size));
    return wrapped;
}

// The counter of the steps goes beyond one byte from 43 halves of a block on.
TEST(AESKeyUnwrap, CountsStepsBeyondOneByteAndTwo) {
    const Data key = bytesOfHex(key256);
    for (const std::size_t size : {16U, 344U, 352U, 4'096U, 100'000U}) {
        Data data(size);
        for (std::size_t index = 0; index < size; ++index)
            data[index] = static_cast<std::uint8_t>(index * 7 + index / 256);
        const auto unwrapped = aesKeyUnwrap(key, wrap(key, data));
        ASSERT_TRUE(unwrapped) << size;
        EXPECT_TRUE(std::equal(unwrapped->begin(), unwrapped->end(), data.begin(), data.end())) << size;
    }
}

TEST(AESKeyUnwrap, OfMegabytesCanBeCancelled) {
    std::stop_source stop;
    stop.request_stop();
    const Data wrapped(std::size_t{16} << 20U, 1);
    EXPECT_THROW(aesKeyUnwrap(bytesOfHex(key256), wrapped, stop.get_token()), CancellationError);
}

} // namespace
} // namespace quillbook
