#include "backup/BackupAttachmentLocator.h"
#include "tests/backup/BackupFixture.h"

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using sample::BackupWriter;
using test::BackupKind;
using test::EitherBackup;

struct PathCase {
    const char* name;
    const char* storedPath;
    bool isFound;
};

class StoredPath : public test::BackupFixture, public testing::WithParamInterface<PathCase> {};

TEST_P(StoredPath, ReachesItsEntryOfTheMediaDomain) {
    write(BackupKind::plain);
    BackupAttachmentLocator locator(open(BackupKind::plain));
    const auto expected = GetParam().isFound ? std::optional<fs::path>(stored("a.txt")) : std::nullopt;
    EXPECT_EQ(locator.locate(GetParam().storedPath), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, StoredPath,
    testing::Values(
        PathCase{"belowHome", "~/Library/SMS/Attachments/00/a.txt", true},
        PathCase{"belowMobile", "/var/mobile/Library/SMS/Attachments/00/a.txt", true},
        PathCase{"belowPrivateMobile", "/private/var/mobile/Library/SMS/Attachments/00/a.txt", true},
        PathCase{"relative", "Library/SMS/Attachments/00/a.txt", true},
        PathCase{"withLeadingSlashes", "///Library/SMS/Attachments/00/a.txt", true},
        PathCase{"onlyTheFirstPrefixGoes", "~//var/mobile/Library/SMS/Attachments/00/a.txt", false},
        PathCase{"slashesBehindAPrefixStay", "/var/mobile//Library/SMS/Attachments/00/a.txt", false},
        PathCase{"empty", "", false}, PathCase{"homeAlone", "~/", false},
        PathCase{"slashesAlone", "//", false}, PathCase{"leadingOut", "~/../../../etc/passwd", false}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_P(EitherBackup, locatorTreatsTroubleAsNothing) {
    write(kind(), [this](BackupWriter& writer) {
        addMessages(writer);
        writer.addBytes("MediaDomain", "oddName", "bytes", {.fileID = "..", .hasStoredFile = false});
        writer.addBytes("MediaDomain", "absent", "bytes", {.hasStoredFile = false});
    });
    BackupAttachmentLocator locator(open(kind()));
    EXPECT_EQ(locator.locate("~/oddName"), std::nullopt);
    EXPECT_EQ(locator.locate("~/absent"), std::nullopt);
}

struct TroubleCase {
    const char* name;
    sample::BackupFileOptions options;
};

class UndecryptableAttachment : public test::BackupFixture,
                                public testing::WithParamInterface<TroubleCase> {};

TEST_P(UndecryptableAttachment, IsNothingToTheLocator) {
    write(BackupKind::encrypted, [this](BackupWriter& writer) {
        addMessages(writer);
        writer.addBytes("MediaDomain", "odd", "bytes", GetParam().options);
    });
    const auto opened = open(BackupKind::encrypted);
    EXPECT_THROW(opened->fileURL("MediaDomain", "odd"), std::exception);
    BackupAttachmentLocator locator(opened);
    EXPECT_EQ(locator.locate("~/odd"), std::nullopt);
    EXPECT_EQ(locator.probe("~/odd"), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Table, UndecryptableAttachment,
    testing::Values(TroubleCase{"keyless", {.hasKey = false}}, TroubleCase{"tooLong", {.claimedSize = 100}},
                    TroubleCase{"ofNegativeSize", {.claimedSize = -1}},
                    TroubleCase{"withoutARecord", {.fileBlob = Data()}},
                    TroubleCase{"ofAnUnknownClass", {.protectionClass = 99}},
                    TroubleCase{"malformedFileID", {.fileID = "..", .hasStoredFile = false}}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_P(EitherBackup, locatorProbesTheStoredFile) {
    write(kind());
    BackupAttachmentLocator locator(open(kind()));
    EXPECT_EQ(locator.probe("~/Library/SMS/Attachments/00/a.txt"), stored("a.txt"));
    EXPECT_EQ(locator.probe("~/"), std::nullopt);
    EXPECT_EQ(locator.probe("~/unknown"), std::nullopt);
}

TEST_P(EitherBackup, locatorReleasesWhatWasDecryptedAlone) {
    write(kind());
    const auto before = test::snapshotOf(backup);
    BackupAttachmentLocator locator(open(kind()));
    const auto file = locator.locate("~/Library/SMS/Attachments/00/a.txt");
    ASSERT_TRUE(file);
    locator.release(*file);
    EXPECT_EQ(fs::exists(*file), kind() == BackupKind::plain);
    EXPECT_EQ(test::snapshotOf(backup), before);
}

} // namespace
} // namespace quillbook
