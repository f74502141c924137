#include "backup/BackupError.h"
#include "backup/Keybag.h"
#include "core/records/Cancellation.h"
#include "tests/backup/HexBytes.h"

#include <chrono>
#include <optional>
#include <thread>

#include <gmock/gmock.h>
#include <openssl/evp.h>

namespace quillbook {
namespace {

using test::bytesOfHex;
using test::bytesOfText;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using Reason = BackupError::Reason;

/// One record as a keybag holds it.
Data record(std::string_view tag, const Data& value) {
    Data bytes = bytesOfText(tag);
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(value.size() >> static_cast<unsigned int>(shift)));
    bytes.insert(bytes.end(), value.begin(), value.end());
    return bytes;
}

Data joined(const std::vector<Data>& parts) {
    Data bytes;
    for (const Data& part : parts)
        bytes.insert(bytes.end(), part.begin(), part.end());
    return bytes;
}

const Data keybagUUID = record("UUID", bytesOfText("bag"));
const Data classUUID = record("UUID", bytesOfText("class"));

ParsedKeybag parsed(const std::vector<Data>& records) {
    return parseKeybag(joined(records));
}

/// The error that `body` throws, or nothing.
template <typename Body>
std::optional<BackupError> errorOf(Body body) {
    try {
        body();
    } catch (const BackupError& error) {
        return error;
    }
    return std::nullopt;
}

TEST(ParseKeybag, StoresTheFirstIdentifierInTheHeader) {
    const auto keybag = parsed({keybagUUID, classUUID, classUUID});
    EXPECT_THAT(keybag.header, ElementsAre(Pair("UUID", bytesOfText("bag"))));
}

TEST(ParseKeybag, StoresAClassUnderItsNumber) {
    const auto keybag =
        parsed({keybagUUID, classUUID, record("CLAS", {0, 0, 0, 4}), record("WRAP", {0, 0, 0, 2}),
                record("WPKY", {1}), record("KTYP", {2}), record("PBKY", {3})});
    const KeybagFields fields = {
        {"CLAS", {0, 0, 0, 4}}, {"WRAP", {0, 0, 0, 2}}, {"WPKY", {1}}, {"KTYP", {2}}, {"PBKY", {3}}};
    EXPECT_THAT(keybag.classes, ElementsAre(Pair(4U, fields)));
}

TEST(ParseKeybag, DropsTheIdentifierOfAClass) {
    const auto keybag = parsed({keybagUUID, classUUID, record("CLAS", {1})});
    EXPECT_FALSE(keybag.classes.at(1).contains("UUID"));
}

TEST(ParseKeybag, StoresSeveralClassesTheLastClosedByTheEnd) {
    const auto keybag = parsed({keybagUUID, classUUID, record("CLAS", {1}), classUUID, record("CLAS", {2})});
    EXPECT_THAT(keybag.classes, ElementsAre(Pair(1U, testing::_), Pair(2U, testing::_)));
}

TEST(ParseKeybag, LetsALaterClassOfTheSameNumberReplaceTheEarlierOne) {
    const auto keybag = parsed({keybagUUID, classUUID, record("CLAS", {1}), record("KTYP", {7}), classUUID,
                                record("CLAS", {1}), record("PBKY", {8})});
    const KeybagFields fields = {{"CLAS", {1}}, {"PBKY", {8}}};
    EXPECT_THAT(keybag.classes, ElementsAre(Pair(1U, fields)));
}

TEST(ParseKeybag, DropsAClassWithoutNumberWhenTheNextOneComes) {
    const auto keybag = parsed({keybagUUID, classUUID, record("WPKY", {9}), classUUID, record("CLAS", {2})});
    EXPECT_THAT(keybag.classes, ElementsAre(Pair(2U, KeybagFields{{"CLAS", {2}}})));
}

TEST(ParseKeybag, DropsAClassWithoutNumberAtTheEnd) {
    EXPECT_THAT(parsed({keybagUUID, classUUID, record("WPKY", {9})}).classes, IsEmpty());
}

TEST(ParseKeybag, DoesNotGiveANumberOfTheHeaderToTheFirstClass) {
    const auto keybag = parsed({keybagUUID, record("CLAS", {5}), classUUID, record("WPKY", {9})});
    EXPECT_THAT(keybag.classes, IsEmpty());
    EXPECT_FALSE(keybag.header.contains("CLAS"));
}

TEST(ParseKeybag, StoresAClassUnderTheLastOfItsNumbers) {
    const auto keybag = parsed({keybagUUID, classUUID, record("CLAS", {5}), record("CLAS", {6})});
    EXPECT_THAT(keybag.classes, ElementsAre(Pair(6U, KeybagFields{{"CLAS", {6}}})));
}

TEST(ParseKeybag, KeepsWrapFlagsInFrontOfTheFirstClassInTheHeader) {
    EXPECT_EQ(parsed({keybagUUID, record("WRAP", {1})}).header.at("WRAP"), Data{1});
}

TEST(ParseKeybag, KeepsWrapFlagsInFrontOfTheFirstIdentifierInTheHeader) {
    EXPECT_EQ(parsed({record("WRAP", {1}), keybagUUID}).header.at("WRAP"), Data{1});
}

TEST(ParseKeybag, KeepsWrapFlagsOfAClassOutOfTheHeader) {
    EXPECT_FALSE(parsed({keybagUUID, classUUID, record("WRAP", {1})}).header.contains("WRAP"));
}

class FieldOfAClass : public testing::TestWithParam<const char*> {};

TEST_P(FieldOfAClass, IsDroppedInFrontOfTheFirstClass) {
    const auto keybag = parsed({keybagUUID, record(GetParam(), {9}), classUUID, record("CLAS", {1})});
    EXPECT_FALSE(keybag.header.contains(GetParam()));
    EXPECT_THAT(keybag.classes, ElementsAre(Pair(1U, KeybagFields{{"CLAS", {1}}})));
}

INSTANTIATE_TEST_SUITE_P(Table, FieldOfAClass, testing::Values("WPKY", "KTYP", "PBKY"),
                         [](const auto& test) { return std::string(test.param); });

TEST(ParseKeybag, PutsEveryOtherTagIntoTheHeaderAlsoFromWithinAClass) {
    const auto keybag = parsed({keybagUUID, classUUID, record("CLAS", {1}), record("SALT", {7})});
    EXPECT_EQ(keybag.header.at("SALT"), Data{7});
    EXPECT_FALSE(keybag.classes.at(1).contains("SALT"));
}

TEST(ParseKeybag, LetsTheLastValueOfATagWin) {
    EXPECT_EQ(parsed({keybagUUID, record("ITER", {1}), record("ITER", {2})}).header.at("ITER"), Data{2});
}

TEST(ParseKeybag, RepairsATagThatIsNotUTF8) {
    const auto keybag = parsed({keybagUUID, record("A\xFF"
                                                   "B\x80",
                                                   {1})});
    EXPECT_EQ(keybag.header.at("A\uFFFDB\uFFFD"), Data{1});
}

TEST(ParseKeybag, KeepsATagWithAZeroByteInside) {
    using namespace std::string_view_literals;
    EXPECT_TRUE(parsed({keybagUUID, record("A\0BC"sv, {})}).header.contains("A\0BC"sv));
}

struct NumberCase {
    const char* name;
    Data value;
    std::uint32_t number;
};

class ClassNumber : public testing::TestWithParam<NumberCase> {};

TEST_P(ClassNumber, IsTheLow32BitsOfABigEndianInteger) {
    const auto keybag = parsed({keybagUUID, classUUID, record("CLAS", GetParam().value)});
    EXPECT_THAT(keybag.classes, ElementsAre(Pair(GetParam().number, testing::_)));
}

INSTANTIATE_TEST_SUITE_P(Table, ClassNumber,
                         testing::Values(NumberCase{"noBytes", {}, 0}, NumberCase{"oneByte", {200}, 200},
                                         NumberCase{"twoBytes", {1, 2}, 0x102},
                                         NumberCase{"fourBytes", {0xFE, 0xDC, 0xBA, 0x98}, 0xFEDCBA98},
                                         NumberCase{"fiveBytes", {9, 1, 2, 3, 4}, 0x01020304},
                                         NumberCase{"twelveBytes", Data(12, 0xFF), 0xFFFFFFFF}),
                         [](const auto& test) { return std::string(test.param.name); });

struct MalformedCase {
    const char* name;
    Data bytes;
};

class MalformedKeybag : public testing::TestWithParam<MalformedCase> {};

TEST_P(MalformedKeybag, IsRefused) {
    EXPECT_EQ(errorOf([] { parseKeybag(GetParam().bytes); }), BackupError(Reason::malformedKeybag));
}

INSTANTIATE_TEST_SUITE_P(
    Table, MalformedKeybag,
    testing::Values(MalformedCase{"noBytes", {}}, MalformedCase{"sevenBytes", bytesOfHex("55554944000000")},
                    MalformedCase{"noIdentifier", joined({record("VERS", {1}), record("TYPE", {2})})},
                    MalformedCase{"valueOneByteShort", bytesOfHex("5555494400000004010203")},
                    MalformedCase{"lengthOfFourGigabytes", bytesOfHex("55554944FFFFFFFF01020304")},
                    MalformedCase{"lengthOfTwoGigabytes", bytesOfHex("5555494480000000")},
                    MalformedCase{"laterRecordOverruns",
                                  joined({keybagUUID, bytesOfHex("53414C540000000200")})}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(ParseKeybag, IgnoresATrailOfFewerThanEightBytes) {
    const auto keybag = parsed({keybagUUID});
    for (std::size_t size = 1; size < 8; ++size)
        EXPECT_EQ(parsed({keybagUUID, Data(size, 0xFF)}), keybag) << size;
}

TEST(ParseKeybag, TakesAKeybagCutAnywhereOrRefusesIt) {
    const Data bytes = joined({keybagUUID, record("SALT", Data(20, 1)), classUUID,
                               record("CLAS", {0, 0, 0, 1}), record("WPKY", Data(40, 2))});
    int refused = 0;
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        const auto error = errorOf([&] { parseKeybag(std::span(bytes).first(size)); });
        EXPECT_TRUE(!error || *error == BackupError(Reason::malformedKeybag)) << size;
        refused += error ? 1 : 0;
    }
    EXPECT_EQ(refused, 11 + 20 + 5 + 4 + 40);
}

TEST(ParseKeybag, TakesAHundredThousandRecordsOfNoBytes) {
    Data bytes = keybagUUID;
    for (int count = 0; count < 100'000; ++count) {
        const Data next = record(count % 2 == 0 ? "UUID" : "CLAS", {});
        bytes.insert(bytes.end(), next.begin(), next.end());
    }
    EXPECT_THAT(parseKeybag(bytes).classes, ElementsAre(Pair(0U, testing::_)));
}

Data libcryptoDerived(const Data& password, const Data& salt, int rounds, const EVP_MD* hash) {
    Data key(32);
    EXPECT_EQ(PKCS5_PBKDF2_HMAC(reinterpret_cast<const char*>(password.data()),
                                static_cast<int>(password.size()), salt.data(), static_cast<int>(salt.size()),
                                rounds, hash, static_cast<int>(key.size()), key.data()),
              1);
    return key;
}

/// `data` wrapped by libcrypto's own key wrap.
Data wrapped(const Data& key, const Data& data) {
    Data bytes(data.size() + 16);
    int size = 0;
    EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
    EVP_CIPHER_CTX_set_flags(context, EVP_CIPHER_CTX_FLAG_WRAP_ALLOW);
    const EVP_CIPHER* cipher = key.size() == 16 ? EVP_aes_128_wrap() : EVP_aes_256_wrap();
    EXPECT_EQ(EVP_EncryptInit_ex(context, cipher, nullptr, key.data(), nullptr), 1);
    EXPECT_EQ(EVP_EncryptUpdate(context, bytes.data(), &size, data.data(), static_cast<int>(data.size())), 1);
    EVP_CIPHER_CTX_free(context);
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}

Data classKey(std::uint8_t number) {
    return Data(32, number);
}

KeybagFields classFields(const Data& passwordKey, std::uint8_t number, const Data& flags = {0, 0, 0, 2}) {
    return {{"CLAS", {0, 0, 0, number}}, {"WRAP", flags}, {"WPKY", wrapped(passwordKey, classKey(number))}};
}

const Data salt = bytesOfText("0123456789 a salt 01");
const Data firstSalt = bytesOfText("another salt of some");

/// An older keybag: one derivation, of three rounds.
ParsedKeybag singleKeybag(std::string_view password) {
    const Data key = libcryptoDerived(bytesOfText(password), salt, 3, EVP_sha1());
    return {.header = {{"SALT", salt}, {"ITER", {0, 0, 0, 3}}}, .classes = {{4, classFields(key, 4)}}};
}

/// A newer keybag: five rounds before the three.
ParsedKeybag doubleKeybag(std::string_view password) {
    const Data first = libcryptoDerived(bytesOfText(password), firstSalt, 5, EVP_sha256());
    const Data key = libcryptoDerived(first, salt, 3, EVP_sha1());
    return {.header = {{"SALT", salt}, {"ITER", {0, 0, 0, 3}}, {"DPSL", firstSalt}, {"DPIC", {0, 0, 0, 5}}},
            .classes = {{3, classFields(key, 3)}, {4, classFields(key, 4)}}};
}

SecretBytes secret(const Data& bytes) {
    return {bytes.begin(), bytes.end()};
}

std::optional<BackupError> unlockError(std::string_view password, const ParsedKeybag& keybag) {
    return errorOf([&] { unlock(password, keybag); });
}

TEST(Unlock, OpensAnOlderKeybagWithOneDerivation) {
    EXPECT_THAT(unlock("letters", singleKeybag("letters")).classKeys,
                ElementsAre(Pair(4U, secret(classKey(4)))));
}

TEST(Unlock, OpensANewerKeybagWithTwoDerivations) {
    EXPECT_THAT(unlock("letters", doubleKeybag("letters")).classKeys,
                ElementsAre(Pair(3U, secret(classKey(3))), Pair(4U, secret(classKey(4)))));
}

TEST(Unlock, OpensAKeybagAsItIsStored) {
    const auto keybag = singleKeybag("letters");
    std::vector<Data> records = {keybagUUID};
    for (const auto& [tag, value] : keybag.header)
        records.push_back(record(tag, value));
    records.push_back(classUUID);
    for (const auto& [tag, value] : keybag.classes.at(4))
        records.push_back(record(tag, value));
    EXPECT_EQ(unlock("letters", parsed(records)), unlock("letters", keybag));
}

class FieldOfTheFirstDerivation : public testing::TestWithParam<const char*> {};

TEST_P(FieldOfTheFirstDerivation, LeavesThatStepOutWhenItStandsAlone) {
    auto keybag = singleKeybag("letters");
    keybag.header[GetParam()] = {0, 0, 0, 5};
    EXPECT_EQ(unlock("letters", keybag).classKeys.size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Table, FieldOfTheFirstDerivation, testing::Values("DPSL", "DPIC"),
                         [](const auto& test) { return std::string(test.param); });

class RequiredField : public testing::TestWithParam<const char*> {};

TEST_P(RequiredField, MakesTheKeybagMalformedWhenItIsMissing) {
    auto keybag = doubleKeybag("letters");
    keybag.header.erase(GetParam());
    EXPECT_EQ(unlockError("letters", keybag), BackupError(Reason::malformedKeybag));
}

INSTANTIATE_TEST_SUITE_P(Table, RequiredField, testing::Values("SALT", "ITER"),
                         [](const auto& test) { return std::string(test.param); });

class ZeroRounds : public testing::TestWithParam<std::size_t> {};

TEST_P(ZeroRounds, OfTheSecondDerivationMakeTheKeybagMalformed) {
    auto keybag = doubleKeybag("letters");
    keybag.header["ITER"] = Data(GetParam());
    EXPECT_EQ(unlockError("letters", keybag), BackupError(Reason::malformedKeybag));
}

TEST_P(ZeroRounds, OfTheFirstDerivationMakeThePasswordWrong) {
    auto keybag = doubleKeybag("letters");
    keybag.header["DPIC"] = Data(GetParam());
    EXPECT_EQ(unlockError("letters", keybag), BackupError(Reason::wrongPassword));
}

TEST_P(ZeroRounds, OfTheFirstDerivationLeaveZerosAsItsResult) {
    auto keybag = doubleKeybag("letters");
    keybag.header["DPIC"] = Data(GetParam());
    keybag.classes = {{4, classFields(libcryptoDerived(Data(32), salt, 3, EVP_sha1()), 4)}};
    EXPECT_EQ(unlock("any word", keybag).classKeys.at(4), secret(classKey(4)));
}

INSTANTIATE_TEST_SUITE_P(Bytes, ZeroRounds, testing::Values(0, 1, 4, 8, 9, 40),
                         testing::PrintToStringParamName());

TEST(Unlock, ReadsRoundsOverAllTheirBytes) {
    auto keybag = singleKeybag("letters");
    const Data key = libcryptoDerived(bytesOfText("letters"), salt, 0x1234, EVP_sha1());
    keybag.classes = {{4, classFields(key, 4)}};
    for (const char* rounds :
         {"1234", "001234", "00001234", "0000000000001234", "00000000000000000000001234"}) {
        keybag.header["ITER"] = bytesOfHex(rounds);
        EXPECT_EQ(unlockError("letters", keybag), std::nullopt) << rounds;
    }
}

TEST(Unlock, SaysThatAWrongPasswordIsWrong) {
    EXPECT_EQ(unlockError("Letters", singleKeybag("letters")), BackupError(Reason::wrongPassword));
    EXPECT_EQ(unlockError("Letters", doubleKeybag("letters")), BackupError(Reason::wrongPassword));
}

TEST(Unlock, SaysThatAnEmptyPasswordIsWrong) {
    EXPECT_EQ(unlockError("", singleKeybag("letters")), BackupError(Reason::wrongPassword));
    EXPECT_EQ(unlockError("", doubleKeybag("letters")), BackupError(Reason::wrongPassword));
}

TEST(Unlock, OpensAKeybagOfAnEmptyPassword) {
    EXPECT_EQ(unlockError("", singleKeybag("")), std::nullopt);
}

TEST(Unlock, TakesThePasswordsBytesAsTheyAre) {
    const auto keybag = doubleKeybag("Ze\u0301 \U0001F5DD");
    EXPECT_EQ(unlockError("Ze\u0301 \U0001F5DD", keybag), std::nullopt);
    EXPECT_EQ(unlockError("Z\u00E9 \U0001F5DD", keybag), BackupError(Reason::wrongPassword));
}

TEST(Unlock, TakesAPasswordWithAZeroByteWhole) {
    using namespace std::string_view_literals;
    EXPECT_EQ(unlockError("let\0ters"sv, singleKeybag("let\0ters"sv)), std::nullopt);
    EXPECT_EQ(unlockError("let", singleKeybag("let\0ters"sv)), BackupError(Reason::wrongPassword));
}

TEST(Unlock, SaysThatThePasswordIsWrongOnceOneOfTheClassesDoesNotOpen) {
    auto keybag = doubleKeybag("letters");
    keybag.classes.at(4).at("WPKY").back() ^= 1U;
    EXPECT_EQ(unlockError("letters", keybag), BackupError(Reason::wrongPassword));
}

TEST(Unlock, SaysThatThePasswordIsWrongForAWrapOfNoPossibleLength) {
    auto keybag = doubleKeybag("letters");
    keybag.classes.at(4)["WPKY"] = Data(39);
    EXPECT_EQ(unlockError("letters", keybag), BackupError(Reason::wrongPassword));
}

struct SkippedCase {
    const char* name;
    KeybagFields fields;
};

class SkippedClass : public testing::TestWithParam<SkippedCase> {};

TEST_P(SkippedClass, DoesNotMakeThePasswordLookWrong) {
    auto keybag = singleKeybag("letters");
    keybag.classes[9] = GetParam().fields;
    EXPECT_THAT(unlock("letters", keybag).classKeys, ElementsAre(Pair(4U, testing::_)));
}

TEST_P(SkippedClass, AloneLeavesNothingToOpen) {
    auto keybag = singleKeybag("letters");
    keybag.classes = {{9, GetParam().fields}};
    EXPECT_EQ(unlockError("letters", keybag),
              BackupError(Reason::unsupportedBackup, "no passcode-wrapped class keys"));
}

INSTANTIATE_TEST_SUITE_P(
    Table, SkippedClass,
    testing::Values(SkippedCase{"noFields", {}}, SkippedCase{"noKey", {{"WRAP", {0, 0, 0, 2}}}},
                    SkippedCase{"noFlags", {{"WPKY", Data(40)}}},
                    SkippedCase{"flagsOfNoBytes", {{"WRAP", {}}, {"WPKY", Data(40)}}},
                    SkippedCase{"deviceWrap", {{"WRAP", {0, 0, 0, 1}}, {"WPKY", Data(40)}}},
                    SkippedCase{"otherFlags", {{"WRAP", {0xFD}}, {"WPKY", Data(40)}}},
                    SkippedCase{"passwordFlagNotInTheLastByte", {{"WRAP", {2, 0}}, {"WPKY", Data(40)}}}),
    [](const auto& test) { return std::string(test.param.name); });

class PasswordFlag : public testing::TestWithParam<NumberCase> {};

TEST_P(PasswordFlag, IsReadInTheLastByte) {
    auto keybag = singleKeybag("letters");
    keybag.classes.at(4)["WRAP"] = GetParam().value;
    EXPECT_EQ(unlock("letters", keybag).classKeys.size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Table, PasswordFlag,
                         testing::Values(NumberCase{"oneByte", {2}, 0},
                                         NumberCase{"withTheDevices", {0, 0, 0, 3}, 0},
                                         NumberCase{"withAllOthers", {0xFF}, 0},
                                         NumberCase{"manyBytes", {0, 0, 0, 0, 0, 0, 0, 0, 2}, 0}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(Unlock, SaysThatAKeybagWithoutClassesIsNotSupported) {
    auto keybag = singleKeybag("letters");
    keybag.classes.clear();
    EXPECT_EQ(unlockError("letters", keybag),
              BackupError(Reason::unsupportedBackup, "no passcode-wrapped class keys"));
}

struct AbsurdCase {
    const char* name;
    const char* tag;
    Data rounds;
};

class AbsurdRounds : public testing::TestWithParam<AbsurdCase> {};

TEST_P(AbsurdRounds, CanBeCancelled) {
    auto keybag = doubleKeybag("letters");
    keybag.header[GetParam().tag] = GetParam().rounds;
    std::stop_source stop;
    const std::jthread canceller([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        stop.request_stop();
    });
    EXPECT_THROW(unlock("letters", keybag, stop.get_token()), CancellationError);
}

INSTANTIATE_TEST_SUITE_P(Table, AbsurdRounds,
                         testing::Values(AbsurdCase{"secondOfFourBytes", "ITER", Data(4, 0xFF)},
                                         AbsurdCase{"secondOfEightBytes", "ITER", Data(8, 0xFF)},
                                         AbsurdCase{"secondOfTwentyBytes", "ITER", Data(20, 0xFF)},
                                         // Its low 64 bits would be one round.
                                         AbsurdCase{"secondOfNineBytes", "ITER", {1, 0, 0, 0, 0, 0, 0, 0, 1}},
                                         AbsurdCase{"firstOfFourBytes", "DPIC", Data(4, 0xFF)},
                                         AbsurdCase{"firstOfNineBytes", "DPIC", {1, 0, 0, 0, 0, 0, 0, 0, 1}}),
                         [](const auto& test) { return std::string(test.param.name); });

const UnlockedKeybag unlocked{.classKeys = {{0x0102, SecretBytes(32, 1)}, {7, SecretBytes(16, 7)}}};
const Data fileKey = bytesOfText("a key of a file, of 32 bytes ...");

Data blobOf(const Data& number, const Data& wrappedKey) {
    return joined({number, wrappedKey});
}

std::optional<BackupError> unwrapError(const Data& blob, const UnlockedKeybag* keybag = &unlocked) {
    return errorOf([&] { unwrapProtectedKey(blob, keybag); });
}

TEST(UnwrapProtectedKey, ReadsTheClassNumberAsLittleEndian) {
    EXPECT_EQ(unwrapProtectedKey(blobOf({2, 1, 0, 0}, wrapped(Data(32, 1), fileKey)), &unlocked),
              secret(fileKey));
}

TEST(UnwrapProtectedKey, TakesAClassKeyOfSixteenBytes) {
    EXPECT_EQ(unwrapProtectedKey(blobOf({7, 0, 0, 0}, wrapped(Data(16, 7), fileKey)), &unlocked),
              secret(fileKey));
}

TEST(UnwrapProtectedKey, SaysThatTheManifestIsUnreadableWithoutKeybag) {
    EXPECT_EQ(unwrapError(blobOf({7, 0, 0, 0}, wrapped(Data(16, 7), fileKey)), nullptr),
              BackupError(Reason::manifestUnreadable));
}

TEST(UnwrapProtectedKey, SaysThatTheManifestIsUnreadableForABlobOfFewerThanFiveBytes) {
    for (std::size_t size = 0; size < 5; ++size)
        EXPECT_EQ(unwrapError(Data(size)), BackupError(Reason::manifestUnreadable)) << size;
}

TEST(UnwrapProtectedKey, NamesTheClassThatHasNoKeyInABlobOfFiveBytes) {
    EXPECT_EQ(unwrapError({1, 2, 0, 0, 0}), BackupError(Reason::unsupportedBackup, "protection class 513"));
}

TEST(UnwrapProtectedKey, NamesTheGreatestClassInDecimal) {
    EXPECT_EQ(unwrapError(Data(44, 0xFF)),
              BackupError(Reason::unsupportedBackup, "protection class 4294967295"));
}

TEST(UnwrapProtectedKey, SaysThatTheManifestIsUnreadableForAWrapOfNoPossibleLength) {
    EXPECT_EQ(unwrapError({7, 0, 0, 0, 0}), BackupError(Reason::manifestUnreadable));
}

TEST(UnwrapProtectedKey, SaysThatTheManifestIsUnreadableForADamagedWrap) {
    Data blob = blobOf({7, 0, 0, 0}, wrapped(Data(16, 7), fileKey));
    blob.back() ^= 1U;
    EXPECT_EQ(unwrapError(blob), BackupError(Reason::manifestUnreadable));
}

TEST(UnwrapProtectedKey, SaysThatTheManifestIsUnreadableForAClassKeyThatAESDoesNotTake) {
    const UnlockedKeybag odd{.classKeys = {{7, SecretBytes(40, 7)}}};
    EXPECT_EQ(unwrapError(blobOf({7, 0, 0, 0}, Data(40)), &odd), BackupError(Reason::manifestUnreadable));
}

TEST(ParseKeybag, CanBeCancelled) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(parseKeybag(Data(8'000, 0), stop.get_token()), CancellationError);
}

} // namespace
} // namespace quillbook
