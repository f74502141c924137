#include "tests/sample/LibraryUnderTest.h"
#include "tests/support/FolderSnapshot.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/sample/SampleBackups.h"
#include "tools/sample/SampleLibrary.h"
#include "tools/writing/SampleError.h"

#include <regex>

#include <gmock/gmock.h>

namespace quillbook::sample {
namespace {

using quillbook::test::snapshotOf;
using quillbook::test::TemporaryFolder;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

SampleOptions smallOptions(const std::filesystem::path& home) {
    SampleOptions options;
    options.home = home;
    options.messageCount = 100;
    options.attachmentCount = 4;
    options.backups = {BackupKind::plain, BackupKind::encrypted};
    options.keyDerivationRounds = 10;
    return options;
}

/// A library of few messages with both backups, written once for all tests.
struct HomeWithBackups {
    TemporaryFolder folder;
    SampleReport report = writeSampleLibrary(smallOptions(folder.path()));
};

const HomeWithBackups& homeWithBackups() {
    static const HomeWithBackups home;
    return home;
}

TEST(SampleBackups, lieWhereADesktopKeepsThem) {
    for (const SampleBackup& backup : homeWithBackups().report.backups) {
        EXPECT_EQ(backup.folder.parent_path(), homeWithBackups().folder.path() / "Library" /
                                                   "Application Support" / "MobileSync" / "Backup");
        EXPECT_TRUE(std::regex_match(backup.folder.filename().string(), std::regex("00008110-[0-9A-F]{16}")));
        EXPECT_TRUE(std::filesystem::exists(backup.folder / "Manifest.plist"));
    }
}

TEST(SampleBackups, haveIdentifiersAndNamesOfTheirOwn) {
    const auto& backups = homeWithBackups().report.backups;
    ASSERT_THAT(backups, SizeIs(2));
    EXPECT_NE(backups[0].folder, backups[1].folder);
    EXPECT_EQ(backups[0].deviceName, "Robin’s old iPhone");
    EXPECT_EQ(backups[1].deviceName, "Robin’s iPhone");
}

TEST(SampleBackups, haveAnotherIdentifierUnderAnotherSeed) {
    SampleOptions options = smallOptions("home");
    const auto first = sampleBackupFolder(options, BackupKind::plain);
    options.seed = 2;
    EXPECT_NE(sampleBackupFolder(options, BackupKind::plain), first);
}

TEST(SampleBackups, areTheSameByteForByteEachTime) {
    const TemporaryFolder other;
    writeSampleLibrary(smallOptions(other.path()));
    EXPECT_TRUE(test::filesBelow(other.path()) == test::filesBelow(homeWithBackups().folder.path()));
}

TEST(SampleBackups, leaveTheLibraryAsItIsWithoutThem) {
    const TemporaryFolder other;
    SampleOptions options = smallOptions(other.path());
    options.backups.clear();
    const SampleReport report = writeSampleLibrary(options);
    const std::filesystem::path messages = std::filesystem::path("Library") / "Messages";
    EXPECT_TRUE(test::filesBelow(other.path() / messages) ==
                test::filesBelow(homeWithBackups().folder.path() / messages));
    EXPECT_FALSE(std::filesystem::exists(other / "Library/Application Support"));
    EXPECT_THAT(describe(report), Not(HasSubstr("Backup")));
}

TEST(SampleBackups, areNamedInTheReport) {
    const SampleReport& report = homeWithBackups().report;
    EXPECT_THAT(describe(report), HasSubstr("Backup of Robin’s iPhone (encrypted): " +
                                            report.backups[1].folder.string() + "\n"));
    EXPECT_THAT(describe(report), HasSubstr("Backup of Robin’s old iPhone (plain): " +
                                            report.backups[0].folder.string() + "\n"));
}

TEST(SampleBackups, leaveEverythingAloneWhereOneStands) {
    const TemporaryFolder home;
    const SampleOptions options = smallOptions(home.path());
    std::filesystem::create_directories(sampleBackupFolder(options, BackupKind::encrypted));
    const auto before = snapshotOf(home.path());
    EXPECT_THROW(writeSampleLibrary(options), SampleError);
    EXPECT_EQ(snapshotOf(home.path()), before);
}

std::int64_t countInPlainIndex(const std::string& condition) {
    return test::queryNumber(homeWithBackups().report.backups[0].folder / "Manifest.db",
                             "SELECT count(*) FROM Files WHERE flags = 1 AND " + condition);
}

TEST(SampleBackups, holdFilesThatNobodyWhoReadsMessagesAsksFor) {
    EXPECT_EQ(countInPlainIndex("domain = 'CameraRollDomain'"), 3);
    EXPECT_EQ(countInPlainIndex("domain = 'HomeDomain' AND relativePath LIKE 'Library/Preferences/%'"), 1);
}

TEST(SampleBackups, holdAFileOfNoBytesWhereTheLibraryHasNone) {
    EXPECT_EQ(countInPlainIndex("domain = 'MediaDomain' AND relativePath LIKE '%/Empty note.txt'"), 1);
}

} // namespace
} // namespace quillbook::sample
