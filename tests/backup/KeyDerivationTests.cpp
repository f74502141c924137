#include "backup/KeyDerivation.h"
#include "core/records/Cancellation.h"
#include "tests/backup/HexBytes.h"

#include <chrono>
#include <random>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <openssl/evp.h>

namespace quillbook {
namespace {

using namespace std::string_view_literals;
using test::bytesOfHex;
using test::bytesOfText;
using testing::Each;
using testing::ElementsAreArray;
using Hash = KeyDerivationHash;

struct VectorCase {
    const char* name;
    Hash hash;
    std::string_view password;
    std::string_view salt;
    std::uint64_t rounds;
    const char* start; ///< Of the derived key, as far as it is published.
};

class PublishedDerivation : public testing::TestWithParam<VectorCase> {};

TEST_P(PublishedDerivation, IsWhatIsDerived) {
    const auto& vector = GetParam();
    SecretBytes key =
        deriveKey(vector.hash, bytesOfText(vector.password), bytesOfText(vector.salt), vector.rounds);
    const Data start = bytesOfHex(vector.start);
    ASSERT_EQ(key.size(), derivedKeySize);
    key.resize(start.size());
    EXPECT_THAT(key, ElementsAreArray(start));
}

// The vector of RFC 6070 with 16,777,216 rounds is left out: it takes longer than all the other tests.
INSTANTIATE_TEST_SUITE_P(RFC6070, PublishedDerivation,
                         testing::Values(VectorCase{"oneRound", Hash::sha1, "password", "salt", 1,
                                                    "0c60c80f961f0e71f3a9b524af6012062fe037a6"},
                                         VectorCase{"twoRounds", Hash::sha1, "password", "salt", 2,
                                                    "ea6c014dc72d6f8ccd1ed92ace1d41f0d8de8957"},
                                         VectorCase{"manyRounds", Hash::sha1, "password", "salt", 4'096,
                                                    "4b007901b765489abead49d926f721d065a429c1"},
                                         VectorCase{"twoBlocks", Hash::sha1, "passwordPASSWORDpassword",
                                                    "saltSALTsaltSALTsaltSALTsaltSALTsalt", 4'096,
                                                    "3d2eec4fe41c849b80c8d83662c0e44a8b291a964cf2f07038"},
                                         VectorCase{"zeroBytesInside", Hash::sha1, "pass\0word"sv, "sa\0lt"sv,
                                                    4'096, "56fa6aa75548099dcc37d7f03425e0c3"}),
                         [](const auto& test) { return std::string(test.param.name); });

INSTANTIATE_TEST_SUITE_P(
    RFC7914, PublishedDerivation,
    testing::Values(VectorCase{"oneRound", Hash::sha256, "passwd", "salt", 1,
                               "55ac046e56e3089fec1691c22544b605f94185216dde0465e68b9d57c20dacbc"},
                    VectorCase{"manyRounds", Hash::sha256, "Password", "NaCl", 80'000,
                               "4ddcd8f60b98be21830cee5ef22701f9641a4418d04c0414aeff08876b34ab56"}),
    [](const auto& test) { return std::string(test.param.name); });

Data derivedByLibcrypto(Hash hash, const Data& password, const Data& salt, int rounds) {
    Data key(derivedKeySize);
    EXPECT_EQ(PKCS5_PBKDF2_HMAC(reinterpret_cast<const char*>(password.data()),
                                static_cast<int>(password.size()), salt.data(), static_cast<int>(salt.size()),
                                rounds, hash == Hash::sha1 ? EVP_sha1() : EVP_sha256(),
                                static_cast<int>(key.size()), key.data()),
              1);
    return key;
}

Data randomBytes(std::mt19937& source, std::size_t size) {
    Data bytes(size);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(source());
    return bytes;
}

class DerivationWith : public testing::TestWithParam<Hash> {};

// A password of more than 64 bytes is hashed before it becomes the key of the HMAC.
TEST_P(DerivationWith, agreesWithLibcryptoForPasswordsOfAllLengths) {
    std::mt19937 source(1);
    for (const std::size_t size : {0U, 1U, 31U, 32U, 63U, 64U, 65U, 127U, 128U, 129U, 5'000U}) {
        const Data password = randomBytes(source, size);
        const Data salt = randomBytes(source, 20);
        EXPECT_THAT(deriveKey(GetParam(), password, salt, 3),
                    ElementsAreArray(derivedByLibcrypto(GetParam(), password, salt, 3)))
            << size;
    }
}

TEST_P(DerivationWith, agreesWithLibcryptoForSaltsOfAllLengths) {
    std::mt19937 source(2);
    for (const std::size_t size : {0U, 1U, 20U, 51U, 52U, 60U, 64U, 65U, 3'000U}) {
        const Data salt = randomBytes(source, size);
        EXPECT_THAT(deriveKey(GetParam(), bytesOfText("a word"), salt, 2),
                    ElementsAreArray(derivedByLibcrypto(GetParam(), bytesOfText("a word"), salt, 2)))
            << size;
    }
}

TEST_P(DerivationWith, agreesWithLibcryptoForRandomInput) {
    std::mt19937 source(3);
    for (int run = 0; run < 60; ++run) {
        const Data password = randomBytes(source, source() % 200);
        const Data salt = randomBytes(source, source() % 200);
        const int rounds = static_cast<int>(source() % 3'000 + 1);
        EXPECT_THAT(deriveKey(GetParam(), password, salt, static_cast<std::uint64_t>(rounds)),
                    ElementsAreArray(derivedByLibcrypto(GetParam(), password, salt, rounds)));
    }
}

TEST_P(DerivationWith, givesZerosForNoRounds) {
    const auto key = deriveKey(GetParam(), bytesOfText("password"), bytesOfText("salt"), 0);
    EXPECT_EQ(key.size(), derivedKeySize);
    EXPECT_THAT(key, Each(0));
}

TEST_P(DerivationWith, doesNotBeginOnceStopWasRequested) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(deriveKey(GetParam(), {}, {}, 1, stop.get_token()), CancellationError);
}

TEST_P(DerivationWith, endsSoonAfterARequestToStopHoweverManyRoundsRemain) {
    using Clock = std::chrono::steady_clock;
    std::stop_source stop;
    Clock::time_point requested;
    std::jthread canceller([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        requested = Clock::now();
        stop.request_stop();
    });
    EXPECT_THROW(deriveKey(GetParam(), bytesOfText("password"), bytesOfText("salt"), std::uint64_t{1} << 40U,
                           stop.get_token()),
                 CancellationError);
    const auto noticed = Clock::now();
    canceller.join();
    const auto latency = std::chrono::duration_cast<std::chrono::microseconds>(noticed - requested);
    RecordProperty("latencyMicroseconds", static_cast<int>(latency.count()));
    EXPECT_LT(latency,
              std::chrono::seconds(2)); // Far below 100 ms; machines that run tests may be very busy.
}

INSTANTIATE_TEST_SUITE_P(Table, DerivationWith, testing::Values(Hash::sha1, Hash::sha256),
                         [](const auto& test) {
                             return std::string(test.param == Hash::sha1 ? "sha1" : "sha256");
                         });

} // namespace
} // namespace quillbook
