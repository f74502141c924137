#include "shell/adapter/AlbumPictureProvider.h"
#include "shell/adapter/CompletionFacts.h"
#include "shell/adapter/Words.h"
#include "tests/support/ModelFakes.h"

#include <gtest/gtest.h>

namespace quillbook {
namespace {

ArchiveWarning warning(const char* code, const char* summary = "As the album has it.") {
    return {.id = code, .code = code, .summary = summary, .sourceID = std::nullopt};
}

/// An album of this Mac's own library, where a device backup is at hand.
AppModelState delivered(std::int64_t attachments, std::int64_t records,
                        std::vector<ArchiveWarning> warnings = {}) {
    AppModelState state;
    state.availableSources = {test::localMacSource(), test::backupSource("open-backup", false)};
    state.selectedSourceID = "local-mac";
    state.result = ExportResult();
    state.result->messageCount = 12'408;
    state.result->attachmentCount = attachments;
    state.result->attachmentRecordCount = records;
    state.result->warnings = std::move(warnings);
    return state;
}

TEST(CompletionFacts, areEmptyWithoutAResult) {
    const CompletionFacts facts = completionFacts(AppModelState());
    EXPECT_FALSE(facts.isPresent);
    EXPECT_TRUE(facts.heading.isEmpty());
    EXPECT_FALSE(facts.isAnythingMissing);
    EXPECT_TRUE(facts.warnings.isEmpty());
}

TEST(CompletionFacts, headTheScreenWithBothCounts) {
    EXPECT_EQ(completionFacts(delivered(31, 31)).heading.toStdString(),
              countWords(12'408) + " messages and 31 attachments are safe in a portable archive.");
}

TEST(CompletionFacts, haveNoCardWhereNothingIsMissing) {
    const CompletionFacts facts = completionFacts(delivered(31, 31));
    EXPECT_FALSE(facts.isAnythingMissing);
    EXPECT_EQ(facts.missing, QString());
    EXPECT_EQ(facts.findInBackup, QString());
}

TEST(CompletionFacts, haveNoCardWhereMoreWasKeptThanRecorded) {
    EXPECT_FALSE(completionFacts(delivered(32, 31)).isAnythingMissing);
}

TEST(CompletionFacts, haveACardFromOneMissingOn) {
    const CompletionFacts facts = completionFacts(delivered(30, 31));
    EXPECT_TRUE(facts.isAnythingMissing);
    EXPECT_EQ(
        facts.missing.toStdString(),
        "1 of 31 attachments are kept in iCloud and weren’t downloaded to this Mac, so they couldn’t be "
        "included. Open the conversation in Messages to download them, or back up from an iPhone to "
        "include everything.");
}

TEST(CompletionFacts, haveNoListForMissingAttachmentsAlone) {
    const CompletionFacts facts =
        completionFacts(delivered(30, 31, {warning("attachment_missing"), warning("attachment_missing")}));
    EXPECT_TRUE(facts.warnings.isEmpty());
    EXPECT_EQ(facts.warningsHeading, QString());
}

TEST(CompletionFacts, listEveryOtherWarningInOrder) {
    const CompletionFacts facts = completionFacts(delivered(
        30, 31,
        {warning("attachment_missing"), warning("unresolved_reaction"),
         warning("something_new", "A thing that later versions know."), warning("attachment_unreadable")}));
    EXPECT_EQ(facts.warnings.join(u'\n').toStdString(),
              "A reaction could not be matched to its message.\nA thing that later versions know.\n"
              "An attachment could not be read and was skipped.");
    EXPECT_EQ(facts.warningsHeading, QStringLiteral("3 items need attention"));
}

TEST(CompletionFacts, offerTheBackupFromTheLocalMac) {
    EXPECT_EQ(completionFacts(delivered(30, 31)).findInBackup,
              QStringLiteral("Find this conversation in Ada’s iPhone"));
}

TEST(CompletionFacts, offerNoBackupFromABackup) {
    AppModelState state = delivered(30, 31);
    state.selectedSourceID = "open-backup";
    EXPECT_TRUE(completionFacts(state).isAnythingMissing);
    EXPECT_EQ(completionFacts(state).findInBackup, QString());
}

TEST(CompletionFacts, offerNoBackupWhereNothingIsMissing) {
    EXPECT_EQ(completionFacts(delivered(31, 31)).findInBackup, QString());
}

TEST(CompletionFacts, offerNoBackupWhereThereIsNone) {
    AppModelState state = delivered(30, 31);
    state.availableSources = {
        test::localMacSource(),
        {"connected-device", "Ada’s iPad", std::nullopt, ConnectedDeviceWithoutBackup(), false}};
    EXPECT_EQ(completionFacts(state).findInBackup, QString());
}

TEST(CompletionFacts, giveThePicturesInOrderAndNoneAsAFile) {
    AppModelState state = delivered(2, 2);
    state.result->photoPreviewURLs = {"/a/Attachments/1 #.png", "/a/Attachments/Ä.jpg"};
    const CompletionFacts facts = completionFacts(state);
    ASSERT_EQ(facts.pictures.size(), 2);
    EXPECT_EQ(facts.pictures[0], albumPictureURL("/a/Attachments/1 #.png"));
    EXPECT_EQ(facts.pictures[1], albumPictureURL("/a/Attachments/Ä.jpg"));
}

} // namespace
} // namespace quillbook
