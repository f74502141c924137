#include "tests/backup-writer/IndependentBackup.h"
#include "tests/sample/LibraryUnderTest.h"
#include "tests/support/FolderSnapshot.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/backup/BackupWriter.h"
#include "tools/writing/SampleError.h"

#include <gmock/gmock.h>

namespace quillbook::sample {
namespace {

using quillbook::test::readFile;
using quillbook::test::snapshotOf;
using quillbook::test::TemporaryFolder;
using test::IndependentBackup;
using test::PropertyListFile;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr const char* noteID = "a5d0bf70bc4c5eb9ed13e3a1aac7d1c8d7a2dd9e";

class PlainBackup : public testing::Test {
protected:
    BackupDescription describe() const {
        BackupDescription description;
        description.folder = folder_ / "backup";
        description.lastBackupDate.secondsSinceReferenceDate = 700'000'000.25;
        return description;
    }
    /// A backup of one note with the given options.
    IndependentBackup backupOfNote(const BackupFileOptions& options = {}) {
        BackupWriter writer(describe());
        stored_ = writer.addBytes("MediaDomain", "Library/Notes/one.txt", "Bring the boat.", options);
        writer.finish();
        return IndependentBackup(describe().folder);
    }

    TemporaryFolder folder_;
    std::filesystem::path stored_;
};

TEST_F(PlainBackup, storesAFileBelowTheFirstTwoCharactersOfItsIdentifier) {
    BackupWriter writer(describe());
    const auto stored = writer.addBytes("HomeDomain", "Library/SMS/sms.db", "rows");
    EXPECT_EQ(stored, describe().folder / "3d" / "3d0d7e5fb2ce288813306e4d4636395e047a3d28");
    EXPECT_EQ(readFile(stored), "rows");
}

TEST_F(PlainBackup, consistsOfTheIndexThreePropertyListsAndTheFiles) {
    const IndependentBackup backup = backupOfNote();
    std::vector<std::string> names;
    for (const auto& [name, contents] : test::filesBelow(backup.folder()))
        names.push_back(name);
    EXPECT_THAT(names, UnorderedElementsAre("Info.plist", "Manifest.db", "Manifest.plist", "Status.plist",
                                            stored_.lexically_relative(backup.folder()).string()));
}

TEST_F(PlainBackup, leavesNothingBesideItsFolder) {
    backupOfNote();
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path()))
        names.push_back(entry.path().filename().string());
    EXPECT_THAT(names, ElementsAre("backup"));
}

TEST_F(PlainBackup, keepsTheRecordOfAFileInAKeyedArchive) {
    const auto row = backupOfNote().row("MediaDomain", "Library/Notes/one.txt");
    EXPECT_EQ(row.flags, 1);
    EXPECT_EQ(row.size, 15);
    EXPECT_EQ(row.recordPath, "Library/Notes/one.txt");
    EXPECT_EQ(row.protectionClass, 4);
    EXPECT_FALSE(row.key.has_value());
}

TEST_F(PlainBackup, hasRowsForTheFoldersThatLeadToAFile) {
    BackupWriter writer(describe());
    writer.addBytes("MediaDomain", "Library/Notes/one.txt", "1");
    writer.addBytes("MediaDomain", "Library/Notes/two.txt", "2");
    writer.finish();
    std::vector<std::string> folders;
    for (const auto& row : IndependentBackup(describe().folder).rows()) {
        if (row.flags == 2) folders.push_back(row.relativePath);
    }
    EXPECT_THAT(folders, ElementsAre("", "Library", "Library/Notes"));
}

TEST_F(PlainBackup, hasTheTablesAndIndexesOfADevice) {
    const auto index = backupOfNote().index();
    EXPECT_THAT(test::queryColumn(index, "SELECT name FROM sqlite_master WHERE sql IS NOT NULL"),
                UnorderedElementsAre("Files", "Properties", "FilesDomainIdx", "FilesRelativePathIdx",
                                     "FilesFlagsIdx"));
    EXPECT_THAT(test::queryColumn(index, "SELECT name || ' ' || type FROM pragma_table_info('Files')"),
                ElementsAre("fileID TEXT", "domain TEXT", "relativePath TEXT", "flags INTEGER", "file BLOB"));
}

TEST_F(PlainBackup, hasAnIndexMarkedForAWriteAheadLogAndCompleteWithoutOne) {
    const IndependentBackup backup = backupOfNote();
    const std::string bytes = readFile(backup.index());
    EXPECT_EQ(bytes.substr(18, 2), "\2\2");
    EXPECT_FALSE(std::filesystem::exists(backup.folder() / "Manifest.db-wal"));
    EXPECT_EQ(test::queryColumn(backup.index(), "PRAGMA integrity_check"), std::vector<std::string>{"ok"});
}

TEST_F(PlainBackup, hasAnIndexWithARollbackJournalWhereThatIsAskedFor) {
    BackupDescription description = describe();
    description.manifestJournal = ManifestJournal::rollback;
    BackupWriter(description).finish();
    EXPECT_EQ(readFile(description.folder / "Manifest.db").substr(18, 2), "\1\1");
}

TEST_F(PlainBackup, saysInItsManifestThatItIsNotEncrypted) {
    const PropertyListFile manifest(backupOfNote().folder() / "Manifest.plist");
    EXPECT_TRUE(manifest.isBinary());
    EXPECT_EQ(manifest.truth("IsEncrypted"), false);
    EXPECT_EQ(manifest.data("BackupKeyBag"), std::nullopt);
    EXPECT_EQ(manifest.data("ManifestKey"), std::nullopt);
    EXPECT_DOUBLE_EQ(manifest.date("Date").value(), 700'000'000.25);
}

TEST_F(PlainBackup, describesItsDeviceInXML) {
    const PropertyListFile info(backupOfNote().folder() / "Info.plist");
    EXPECT_FALSE(info.isBinary());
    EXPECT_EQ(info.text("Device Name"), "Robin’s iPhone");
    EXPECT_EQ(info.text("Product Type"), "iPhone14,5");
    EXPECT_EQ(info.text("Product Version"), "17.5.1");
    EXPECT_EQ(info.text("Unique Identifier"), "backup");
    EXPECT_EQ(info.date("Last Backup Date"), 700'000'000);
}

TEST_F(PlainBackup, hasNoManifestBeforeItIsFinished) {
    {
        BackupWriter writer(describe());
        writer.addBytes("MediaDomain", "one.txt", "1");
    }
    EXPECT_FALSE(std::filesystem::exists(describe().folder / "Manifest.plist"));
    EXPECT_FALSE(std::filesystem::exists(describe().folder / "Manifest.db"));
}

TEST_F(PlainBackup, isNotWrittenOverSomethingElse) {
    folder_.write("backup/letter.txt", "Dear Robin");
    const auto before = snapshotOf(folder_.path());
    EXPECT_THROW(BackupWriter writer(describe()), SampleError);
    EXPECT_EQ(snapshotOf(folder_.path()), before);
}

TEST_F(PlainBackup, mayLackTheFileOfARow) {
    const IndependentBackup backup = backupOfNote({.hasStoredFile = false});
    const auto row = backup.row("MediaDomain", "Library/Notes/one.txt");
    EXPECT_EQ(row.size, 15);
    EXPECT_FALSE(std::filesystem::exists(backup.storedFile(row)));
    EXPECT_THAT(stored_.string(), IsEmpty());
}

TEST_F(PlainBackup, mayNameAFileByAnotherIdentifier) {
    const IndependentBackup backup = backupOfNote({.fileID = noteID});
    EXPECT_EQ(backup.row("MediaDomain", "Library/Notes/one.txt").fileID, noteID);
    EXPECT_EQ(stored_, backup.folder() / "a5" / noteID);
}

TEST_F(PlainBackup, writesNothingUnderAnIdentifierThatLeavesItsFolder) {
    const IndependentBackup backup = backupOfNote({.fileID = "../../../../../../escaped/by/this/identifier"});
    EXPECT_THAT(stored_.string(), IsEmpty());
    EXPECT_EQ(test::filesBelow(backup.folder()).size(), 4U);
}

TEST_F(PlainBackup, mayClaimAnotherSize) {
    EXPECT_EQ(backupOfNote({.claimedSize = -1}).row("MediaDomain", "Library/Notes/one.txt").size, -1);
}

TEST_F(PlainBackup, mayHoldAnotherRecord) {
    const IndependentBackup backup = backupOfNote({.fileBlob = Data{1, 2, 3}});
    EXPECT_EQ(test::queryColumn(backup.index(), "SELECT hex(file) FROM Files WHERE flags = 1"),
              std::vector<std::string>{"010203"});
}

TEST_F(PlainBackup, isTheSameByteForByteEachTime) {
    backupOfNote();
    const auto first = test::filesBelow(describe().folder);
    std::filesystem::remove_all(describe().folder);
    backupOfNote();
    EXPECT_TRUE(test::filesBelow(describe().folder) == first);
}

} // namespace
} // namespace quillbook::sample
