#include "tests/backup-writer/IndependentBackup.h"
#include "tests/sample/LibraryUnderTest.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/backup/BackupWriter.h"

#include <gmock/gmock.h>

namespace quillbook::sample {
namespace {

using quillbook::test::readFile;
using quillbook::test::TemporaryFolder;
using test::IndependentBackup;
using test::KeybagRecords;
using test::PropertyListFile;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* phrase = "The lake was like glass that morning.";

BackupEncryption quickEncryption() {
    BackupEncryption encryption;
    encryption.password = "Grüße, 湖";
    encryption.rounds = 50;
    return encryption;
}

/// Any bytes, none of which a padding would look like.
std::string bytesOfSize(std::size_t size) {
    std::string bytes;
    while (bytes.size() < size)
        bytes += static_cast<char>(200 + bytes.size() % 47);
    return bytes;
}

class EncryptedBackup : public testing::Test {
protected:
    BackupDescription describe(BackupEncryption encryption = quickEncryption()) const {
        BackupDescription description;
        description.folder = folder_ / "backup";
        description.encryption = std::move(encryption);
        return description;
    }
    IndependentBackup backupOf(std::string_view contents, const BackupFileOptions& options = {},
                               const BackupEncryption& encryption = quickEncryption()) {
        BackupWriter writer(describe(encryption));
        stored_ = writer.addBytes("MediaDomain", "one.txt", contents, options);
        writer.finish();
        return IndependentBackup(describe().folder, encryption.password);
    }
    KeybagRecords keybag() const {
        const PropertyListFile manifest(describe().folder / "Manifest.plist");
        return test::readKeybag(manifest.data("BackupKeyBag").value());
    }

    TemporaryFolder folder_;
    std::filesystem::path stored_;
};

class EncryptedFileOfSize : public EncryptedBackup, public testing::WithParamInterface<std::size_t> {};

TEST_P(EncryptedFileOfSize, isReadBack) {
    const std::string contents = bytesOfSize(GetParam());
    const IndependentBackup backup = backupOf(contents);
    EXPECT_TRUE(backup.contents("MediaDomain", "one.txt") == contents);
}

TEST_P(EncryptedFileOfSize, fillsWholeBlocks) {
    backupOf(bytesOfSize(GetParam()));
    EXPECT_EQ(std::filesystem::file_size(stored_), GetParam() / 16 * 16 + 16);
}

INSTANTIATE_TEST_SUITE_P(Table, EncryptedFileOfSize,
                         testing::Values(0, 1, 5, 15, 16, 17, 4'096, 1'048'575, 1'048'576, 2'500'001));

TEST_F(EncryptedBackup, storesALargeFileAsOneChainOfBlocks) {
    const std::string contents = bytesOfSize(3'000'000);
    const auto source = folder_.write("film.mov", contents);
    BackupWriter writer(describe());
    writer.addFile("MediaDomain", "film.mov", source);
    writer.finish();
    const IndependentBackup backup(describe().folder, quickEncryption().password);
    EXPECT_TRUE(backup.contents("MediaDomain", "film.mov") == contents);
}

TEST_F(EncryptedBackup, hidesEveryWordButThoseOfThePropertyLists) {
    backupOf(phrase);
    for (const auto& [name, contents] : test::filesBelow(describe().folder)) {
        EXPECT_THAT(contents, Not(HasSubstr(phrase))) << name;
        EXPECT_THAT(contents, Not(HasSubstr("MediaDomain"))) << name;
    }
}

TEST_F(EncryptedBackup, encryptsItsIndexWithoutAPaddingBlock) {
    const IndependentBackup backup = backupOf(phrase);
    EXPECT_EQ(std::filesystem::file_size(backup.folder() / "Manifest.db"),
              std::filesystem::file_size(backup.index()));
    EXPECT_EQ(readFile(backup.index()).substr(0, 16), std::string("SQLite format 3\0", 16));
}

TEST_F(EncryptedBackup, saysInItsManifestThatItIsEncrypted) {
    backupOf(phrase);
    EXPECT_EQ(PropertyListFile(describe().folder / "Manifest.plist").truth("IsEncrypted"), true);
}

TEST_F(EncryptedBackup, doesNotOpenWithAnotherPassword) {
    backupOf(phrase);
    EXPECT_THROW(IndependentBackup(describe().folder, "another"), std::runtime_error);
}

TEST_F(EncryptedBackup, opensWithAnEmptyPasswordThatItWasGiven) {
    BackupEncryption encryption = quickEncryption();
    encryption.password.clear();
    EXPECT_EQ(backupOf(phrase, {}, encryption).contents("MediaDomain", "one.txt"), phrase);
}

TEST_F(EncryptedBackup, namesTheClassOfAKeyInLittleEndianOrder) {
    const auto key = backupOf(phrase).row("MediaDomain", "one.txt").key.value();
    EXPECT_EQ(key.size(), 44U);
    EXPECT_THAT(Data(key.begin(), key.begin() + 4), ElementsAre(4, 0, 0, 0));
}

TEST_F(EncryptedBackup, mayProtectAFileByAnotherClass) {
    const IndependentBackup backup = backupOf(phrase, {.protectionClass = 11});
    const auto row = backup.row("MediaDomain", "one.txt");
    EXPECT_EQ(row.key.value()[0], 11);
    EXPECT_EQ(row.protectionClass, 11);
    EXPECT_EQ(backup.contents(row), phrase);
}

TEST_F(EncryptedBackup, storesAFileWithoutKeyAsItIs) {
    const auto row = backupOf(phrase, {.hasKey = false}).row("MediaDomain", "one.txt");
    EXPECT_FALSE(row.key.has_value());
    EXPECT_EQ(readFile(stored_), phrase);
}

TEST_F(EncryptedBackup, givesEveryFileAKeyOfItsOwn) {
    BackupWriter writer(describe());
    const auto one = writer.addBytes("MediaDomain", "one.txt", phrase);
    const auto other = writer.addBytes("MediaDomain", "other.txt", phrase);
    EXPECT_NE(readFile(one), readFile(other));
}

TEST_F(EncryptedBackup, bindsSomeClassesToTheDeviceAlone) {
    const IndependentBackup backup = backupOf(phrase);
    const KeybagRecords records = keybag();
    EXPECT_EQ(records.classes.size(), 11U);
    for (const std::uint32_t number : {5U, 8U, 9U}) {
        EXPECT_EQ(test::bigEndianNumber(records.classes.at(number).at("WRAP")), 1U);
        EXPECT_EQ(backup.classKeys().count(number), 0U);
    }
    EXPECT_EQ(backup.classKeys().size(), 8U);
}

TEST_F(EncryptedBackup, describesAKeybagOfABackup) {
    backupOf(phrase);
    EXPECT_THAT(keybag().headerTags,
                ElementsAre("VERS", "TYPE", "UUID", "HMCK", "WRAP", "SALT", "ITER", "DPWT", "DPIC", "DPSL"));
    EXPECT_EQ(test::bigEndianNumber(keybag().header.at("TYPE")), 1U);
}

TEST_F(EncryptedBackup, derivesTheKeyInOneStepWhereThatIsAskedFor) {
    BackupEncryption encryption = quickEncryption();
    encryption.derivation = KeyDerivation::single;
    EXPECT_EQ(backupOf(phrase, {}, encryption).contents("MediaDomain", "one.txt"), phrase);
    EXPECT_THAT(keybag().headerTags, Not(Contains("DPSL")));
    EXPECT_THAT(keybag().headerTags, Not(Contains("DPIC")));
    EXPECT_EQ(test::bigEndianNumber(keybag().header.at("ITER")), 50U);
}

struct RoundsCase {
    const char* name;
    std::int64_t rounds;
    std::uint64_t first;
    std::uint64_t second;
};

class TwofoldRounds : public EncryptedBackup, public testing::WithParamInterface<RoundsCase> {};

TEST_P(TwofoldRounds, areThoseOfTheFirstStepAndNoMoreThanTenThousandOfTheSecond) {
    BackupEncryption encryption = quickEncryption();
    encryption.rounds = GetParam().rounds;
    backupOf(phrase, {}, encryption);
    EXPECT_EQ(test::bigEndianNumber(keybag().header.at("DPIC")), GetParam().first);
    EXPECT_EQ(test::bigEndianNumber(keybag().header.at("ITER")), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(Table, TwofoldRounds,
                         testing::Values(RoundsCase{"few", 50, 50, 50},
                                         RoundsCase{"many", 12'000, 12'000, 10'000}),
                         [](const auto& test) { return std::string(test.param.name); });

class OmittedTag : public EncryptedBackup, public testing::WithParamInterface<const char*> {};

TEST_P(OmittedTag, leavesOutTheFirstStep) {
    BackupEncryption encryption = quickEncryption();
    encryption.omittedTags = {GetParam()};
    EXPECT_EQ(backupOf(phrase, {}, encryption).contents("MediaDomain", "one.txt"), phrase);
    EXPECT_THAT(keybag().headerTags, Not(Contains(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(Table, OmittedTag, testing::Values("DPSL", "DPIC"),
                         [](const auto& test) { return std::string(test.param); });

TEST_F(EncryptedBackup, mayClaimMoreRoundsThanItTook) {
    BackupEncryption encryption = quickEncryption();
    encryption.claimedRounds = std::int64_t{1} << 40U;
    BackupWriter(describe(encryption)).finish();
    EXPECT_EQ(test::bigEndianNumber(keybag().header.at("DPIC")), std::uint64_t{1} << 40U);
}

TEST_F(EncryptedBackup, isTheSameByteForByteEachTime) {
    backupOf(phrase);
    const auto first = test::filesBelow(describe().folder);
    std::filesystem::remove_all(describe().folder);
    backupOf(phrase);
    EXPECT_TRUE(test::filesBelow(describe().folder) == first);
}

TEST_F(EncryptedBackup, hasOtherKeysUnderAnotherSeed) {
    backupOf(phrase);
    const std::string first = readFile(stored_);
    std::filesystem::remove_all(describe().folder);
    BackupDescription description = describe();
    description.seed = 2;
    BackupWriter writer(description);
    EXPECT_NE(readFile(writer.addBytes("MediaDomain", "one.txt", phrase)), first);
}

} // namespace
} // namespace quillbook::sample
