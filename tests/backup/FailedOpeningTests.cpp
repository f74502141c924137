#include "backup/BackupPropertyList.h"
#include "backup/WorkingDirectory.h"
#include "tests/backup/BackupFixture.h"
#include "tests/support/NameRecorder.h"
#include "tests/support/PropertyListFixture.h"

#include <fstream>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::BackupKind;
using test::NameRecorder;
using testing::IsEmpty;

struct FailureCase {
    const char* name;
    BackupKind kind;
    std::optional<std::string> password;
    /// Called with the folder of the backup and the stored file of its Messages database.
    std::function<void(const fs::path& backup, const fs::path& messages)> apply;
};

void overwrite(const fs::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
}

void leaveAsItIs(const fs::path& /*backup*/, const fs::path& /*messages*/) {}

class FailedOpening : public test::BackupFixture, public testing::WithParamInterface<FailureCase> {
protected:
    void writeAndSpoil() {
        write(GetParam().kind);
        GetParam().apply(backup, stored("sms.db"));
    }
    void openAndFail() { ASSERT_NE(failureOfOpening(GetParam().kind, GetParam().password), ""); }
};

TEST_P(FailedOpening, leavesNothingOfItsWorkingDirectory) {
    writeAndSpoil();
    const NameRecorder recorder(temporary);
    openAndFail();
    EXPECT_THAT(recorder.names(), testing::Contains(testing::StartsWith("Quillbook-prepared-")));
    EXPECT_THAT(leftovers(), IsEmpty());
}

TEST_P(FailedOpening, doesNotCountItsWorkingDirectoryAsInUse) {
    writeAndSpoil();
    const NameRecorder recorder(temporary);
    openAndFail();
    for (const std::string& name : recorder.names())
        EXPECT_FALSE(isActiveWorkingDirectory(temporary / name)) << name;
}

TEST_P(FailedOpening, leavesNoPlaintext) {
    writeAndSpoil();
    openAndFail();
    EXPECT_THAT(test::placesOf(test::knownPlaintext, temporary), IsEmpty());
}

TEST_P(FailedOpening, leavesTheBackupAsItWas) {
    writeAndSpoil();
    const auto before = test::snapshotOf(backup);
    openAndFail();
    EXPECT_EQ(test::snapshotOf(backup), before);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FailedOpening,
    testing::Values(
        FailureCase{"wrongPassword", BackupKind::encrypted, "lake hause", leaveAsItIs},
        FailureCase{"noPassword", BackupKind::encrypted, std::nullopt, leaveAsItIs},
        FailureCase{"noPropertyList", BackupKind::encrypted, test::backupPassword,
                    [](const auto& backup, const auto&) { fs::remove(backup / "Manifest.plist"); }},
        FailureCase{"emptyEncryptedIndex", BackupKind::encrypted, test::backupPassword,
                    [](const auto& backup, const auto&) { overwrite(backup / "Manifest.db", ""); }},
        FailureCase{"encryptedIndexThatIsNoDatabase", BackupKind::encrypted, test::backupPassword,
                    [](const auto& backup, const auto&) {
                        overwrite(backup / "Manifest.db", std::string(8'192, 'x'));
                    }},
        FailureCase{"cutMessages", BackupKind::encrypted, test::backupPassword,
                    [](const auto&, const auto& messages) {
                        fs::resize_file(messages, fs::file_size(messages) / 2);
                    }},
        FailureCase{"missingEncryptedMessages", BackupKind::encrypted, test::backupPassword,
                    [](const auto&, const auto& messages) { fs::remove(messages); }},
        FailureCase{"missingMessages", BackupKind::plain, std::nullopt,
                    [](const auto&, const auto& messages) { fs::remove(messages); }},
        FailureCase{"indexThatIsNoDatabase", BackupKind::plain, std::nullopt,
                    [](const auto& backup, const auto&) {
                        overwrite(backup / "Manifest.db", std::string(8'192, 'x'));
                    }},
        FailureCase{"emptyIndex", BackupKind::plain, std::nullopt,
                    [](const auto& backup, const auto&) { overwrite(backup / "Manifest.db", ""); }},
        // SQLite takes a log beside an empty database for a remnant, which it may remove.
        FailureCase{"emptyIndexBesideALog", BackupKind::plain, std::nullopt,
                    [](const auto& backup, const auto&) {
                        overwrite(backup / "Manifest.db", "");
                        overwrite(backup / "Manifest.db-wal", std::string(4'096, 'x'));
                    }},
        FailureCase{"emptyIndexBesideAJournal", BackupKind::plain, std::nullopt,
                    [](const auto& backup, const auto&) {
                        overwrite(backup / "Manifest.db", "");
                        overwrite(backup / "Manifest.db-journal", std::string(4'096, 'x'));
                    }}),
    [](const auto& test) { return std::string(test.param.name); });

/// "ManifestKey" is the four bytes of a class number, little-endian, and a wrapped key.
struct ManifestKeyCase {
    const char* name;
    std::function<Data(Data key)> changed;
    const char* failure;
};

class OddManifestKey : public test::BackupFixture, public testing::WithParamInterface<ManifestKeyCase> {};

TEST_P(OddManifestKey, endsTheOpening) {
    write(BackupKind::encrypted);
    const fs::path file = backup / "Manifest.plist";
    const PropertyList sound = readPropertyListFile(file);
    const Data keybag = sound.data("BackupKeyBag").value();
    const Data key = GetParam().changed(sound.data("ManifestKey").value());
    test::PropertyListBuilder list;
    list.data("BackupKeyBag", std::string(keybag.begin(), keybag.end()))
        .data("ManifestKey", std::string(key.begin(), key.end()));
    overwrite(file, list.bytes(test::PropertyListForm::binary));
    EXPECT_EQ(failureOfOpening(BackupKind::encrypted, test::backupPassword), GetParam().failure);
    EXPECT_THAT(leftovers(), IsEmpty());
}

constexpr const char* manifestUnreadable = "The backup manifest could not be read.";

INSTANTIATE_TEST_SUITE_P(Table, OddManifestKey,
                         testing::Values(ManifestKeyCase{"asItWas", [](Data key) { return key; }, ""},
                                         ManifestKeyCase{"empty", [](const Data&) { return Data(); },
                                                         manifestUnreadable},
                                         ManifestKeyCase{"ofFourBytes",
                                                         [](Data key) {
                                                             key.resize(4);
                                                             return key;
                                                         },
                                                         manifestUnreadable},
                                         ManifestKeyCase{"damaged",
                                                         [](Data key) {
                                                             key.back() ^= 1U;
                                                             return key;
                                                         },
                                                         manifestUnreadable},
                                         // The device alone opens this class.
                                         ManifestKeyCase{"ofAClassOfTheDevice",
                                                         [](Data key) {
                                                             key[0] = 5;
                                                             return key;
                                                         },
                                                         "This backup is not supported: protection class 5"}),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace quillbook
