#include "core/text/ByteCountText.h"
#include "core/text/DateText.h"
#include "core/text/ISO8601.h"
#include "core/text/Localization.h"
#include "shell/adapter/AccessFacts.h"
#include "shell/adapter/ConversationFacts.h"
#include "shell/adapter/LocalizedTranslator.h"
#include "shell/adapter/RecoveryFacts.h"
#include "shell/adapter/SetupFacts.h"
#include "shell/adapter/Words.h"
#include "tests/support/ModelFakes.h"

#include <gtest/gtest.h>

namespace quillbook {
namespace {

using Kind = MessagesAccessStatus::Kind;

struct AccessCase {
    const char* name;
    MessagesAccessStatus status;
    const char* symbol;
    const char* title;
    const char* text;

    friend std::ostream& operator<<(std::ostream& out, const AccessCase& each) { return out << each.name; }
};

class AccessCard : public testing::TestWithParam<AccessCase> {};

TEST_P(AccessCard, tellsTheStatus) {
    const AccessFacts facts = accessFacts(GetParam().status);
    EXPECT_EQ(facts.symbol.toStdString(), GetParam().symbol);
    EXPECT_EQ(facts.title.toStdString(), GetParam().title);
    EXPECT_EQ(facts.text.toStdString(), GetParam().text);
}

TEST_P(AccessCard, showsStepsToWhomAccessIsDeniedAlone) {
    EXPECT_EQ(accessFacts(GetParam().status).showsSteps, GetParam().status.kind == Kind::denied);
}

INSTANTIATE_TEST_SUITE_P(
    Table, AccessCard,
    testing::Values(
        AccessCase{
            "checking", {}, "lock.shield", "Checking access…", "Looking for your local Messages library."},
        AccessCase{"granted",
                   {Kind::granted, {}},
                   "checkmark.circle.fill",
                   "Access ready",
                   "Quillbook can read your local conversation history."},
        AccessCase{"denied",
                   {Kind::denied, {}},
                   "lock.shield",
                   "Full Disk Access is needed",
                   "Add Quillbook in Privacy & Security › Full Disk Access, turn it on, then return here."},
        AccessCase{"databaseMissing",
                   {Kind::databaseMissing, {}},
                   "lock.shield",
                   "Messages library not found",
                   "Open Messages and allow it to finish syncing, then check again."},
        AccessCase{"failed", MessagesAccessStatus::failed("SQLite 26: <b>no</b> database"), "lock.shield",
                   "Messages could not be opened", "SQLite 26: <b>no</b> database"},
        AccessCase{"failedSilently", MessagesAccessStatus::failed(""), "lock.shield",
                   "Messages could not be opened", ""}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(AccessFacts, tellWhatIsUnderWayAndWhatIsDone) {
    EXPECT_TRUE(accessFacts({}).isChecking);
    EXPECT_FALSE(accessFacts({}).isGranted);
    EXPECT_TRUE(accessFacts({Kind::granted, {}}).isGranted);
    EXPECT_FALSE(accessFacts({Kind::denied, {}}).isChecking);
}

TEST(StorageFacts, areShownWhereSomethingIsMissingAlone) {
    EXPECT_FALSE(storageFacts(std::nullopt).isShown) << "the survey runs";
    EXPECT_FALSE(storageFacts(AttachmentStorageSurvey{.local = 0, .missing = 0}).isShown);
    EXPECT_FALSE(storageFacts(AttachmentStorageSurvey{.local = 31, .missing = 0}).isShown);
    EXPECT_TRUE(storageFacts(AttachmentStorageSurvey{.local = 0, .missing = 1}).isShown);
    EXPECT_TRUE(storageFacts(AttachmentStorageSurvey{.local = 30, .missing = 1}).isShown);
}

TEST(StorageFacts, tellTheTwoCounts) {
    EXPECT_EQ(storageFacts(AttachmentStorageSurvey{.local = 25, .missing = 6}).text.toStdString(),
              storageSummary(25, 6));
}

struct FolderCase {
    const char* name;
    const char* folder;
    const char* shownName;
    const char* shownPath;

    friend std::ostream& operator<<(std::ostream& out, const FolderCase& each) { return out << each.name; }
};

class FolderNames : public testing::TestWithParam<FolderCase> {};

TEST_P(FolderNames, areTheLastPartAndTheWhole) {
    const FolderFacts facts = folderFacts(GetParam().folder);
    EXPECT_EQ(facts.name.toStdString(), GetParam().shownName);
    EXPECT_EQ(facts.path.toStdString(), GetParam().shownPath);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FolderNames,
    testing::Values(FolderCase{"plain", "/home/ada/Albums", "Albums", "/home/ada/Albums"},
                    FolderCase{"slashBehind", "/home/ada/Albums/", "Albums", "/home/ada/Albums"},
                    FolderCase{"root", "/", "/", "/"}, FolderCase{"nothing", "", "", ""},
                    FolderCase{"letters", "/home/ada/Älben 📷", "Älben 📷", "/home/ada/Älben 📷"},
                    FolderCase{"bytesThatAreNoText", "/home/\xFF", "\uFFFD", "/home/\uFFFD"}),
    [](const auto& test) { return std::string(test.param.name); });

const PriorArchiveSummary prior{.archiveURL = "/home/ada/Grace",
                                .archivedAt = parseISO8601Seconds("2025-12-24T12:00:00Z").value(),
                                .messageCount = 10,
                                .sourceMessageCount = 10};

TEST(PriorArchiveFacts, areNotShownWithoutAnEarlierAlbum) {
    EXPECT_FALSE(priorArchiveFacts(std::nullopt, 7).isShown);
}

TEST(PriorArchiveFacts, writeTheDateLong) {
    EXPECT_EQ(priorArchiveFacts(prior, 0).date.toStdString(), DateText::user().day(prior.archivedAt));
}

TEST(PriorArchiveFacts, tellThatNothingIsNew) {
    for (const auto& none : {std::optional<std::int64_t>(0), std::optional<std::int64_t>()}) {
        const PriorArchiveFacts facts = priorArchiveFacts(prior, none);
        EXPECT_EQ(facts.news, QStringLiteral("No new messages since then"));
        EXPECT_EQ(facts.symbol, QStringLiteral("checkmark.circle"));
    }
}

TEST(PriorArchiveFacts, tellHowManyMessagesAreNew) {
    const PriorArchiveFacts facts = priorArchiveFacts(prior, 1'408);
    EXPECT_EQ(facts.news.toStdString(), countWords(1'408) + " new messages since then");
    EXPECT_EQ(facts.symbol, QStringLiteral("plus.circle.fill"));
}

struct StageCase {
    const char* name;
    ExportProgress progress;
    std::string line;

    friend std::ostream& operator<<(std::ostream& out, const StageCase& each) { return out << each.name; }
};

class StageLine : public testing::TestWithParam<StageCase> {};

TEST_P(StageLine, isTheStageWhereItHasNoSteps) {
    EXPECT_EQ(progressFacts(GetParam().progress, "Grace").stageLine.toStdString(), GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(
    Table, StageLine,
    testing::Values(
        StageCase{"preparing", {}, title(ExportStage::preparing)},
        StageCase{"noSteps", {ExportStage::finalizing, 0, 0, ""}, title(ExportStage::finalizing)},
        StageCase{"oneStep", {ExportStage::writingArchive, 1, 1, ""}, title(ExportStage::writingArchive)},
        StageCase{"twoSteps", {ExportStage::copyingAttachments, 0, 2, ""}, "0 of 2"},
        StageCase{"manySteps",
                  {ExportStage::copyingAttachments, 1'204, 50'000, ""},
                  countWords(1'204) + " of " + countWords(50'000)}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(ProgressFacts, nameTheConversationOrSayThis) {
    EXPECT_EQ(progressFacts({}, "Grace").heading, QStringLiteral("Making the album for Grace"));
    EXPECT_EQ(progressFacts({}, std::nullopt).heading,
              QStringLiteral("Making the album for this conversation"));
}

TEST(ProgressFacts, leaveBracesInATitleAlone) {
    EXPECT_EQ(progressFacts({}, "{} {0} %1 %n").heading, QStringLiteral("Making the album for {} {0} %1 %n"));
}

RecoveryFacts factsOf(decltype(CacheRecoveryStatus::state) state) {
    return recoveryFacts(CacheRecoveryStatus{std::move(state)});
}

std::string linesOf(const RecoveryFacts& facts) {
    return facts.lines.join(u'\n').toStdString();
}

TEST(RecoveryFacts, offerASearchBeforeAny) {
    const RecoveryFacts facts = recoveryFacts(std::nullopt);
    EXPECT_TRUE(facts.canSurvey);
    EXPECT_TRUE(facts.lines.isEmpty());
    EXPECT_FALSE(facts.isBusy);
    EXPECT_FALSE(facts.canRecover);
}

struct RecoveryCase {
    const char* name;
    decltype(CacheRecoveryStatus::state) state;
    const char* symbol;
    std::string lines;
    bool isBusy = false;

    friend std::ostream& operator<<(std::ostream& out, const RecoveryCase& each) { return out << each.name; }
};

class RecoveryStates : public testing::TestWithParam<RecoveryCase> {};

TEST_P(RecoveryStates, haveTheirWordsAndSymbol) {
    const RecoveryFacts facts = factsOf(GetParam().state);
    EXPECT_EQ(facts.state.toStdString(), GetParam().name);
    EXPECT_EQ(linesOf(facts), GetParam().lines);
    EXPECT_EQ(facts.symbol.toStdString(), GetParam().symbol);
    EXPECT_EQ(facts.isBusy, GetParam().isBusy);
}

TEST_P(RecoveryStates, offerNoSearchAndNoRecovery) {
    EXPECT_FALSE(factsOf(GetParam().state).canSurvey);
    EXPECT_FALSE(factsOf(GetParam().state).canRecover);
    EXPECT_EQ(factsOf(GetParam().state).note, QString());
}

INSTANTIATE_TEST_SUITE_P(
    Table, RecoveryStates,
    testing::Values(
        RecoveryCase{"surveying", CacheRecoveryStatus::Surveying(), "", "Searching Messages caches…", true},
        RecoveryCase{"nothingMissing", CacheRecoveryStatus::NothingMissing(), "checkmark.circle",
                     "Nothing is missing."},
        RecoveryCase{"nothingRecoverable", CacheRecoveryStatus::NothingRecoverable{6}, "magnifyingglass",
                     "Searched this Mac’s Messages caches: no recoverable copies of the 6 missing "
                     "attachments. They exist only in iCloud — download them in Messages first."},
        RecoveryCase{"recovering", CacheRecoveryStatus::Recovering(), "", "Copying recovered attachments…",
                     true},
        RecoveryCase{"failed", CacheRecoveryStatus::Failed{"The disk went away."}, "xmark.octagon",
                     "Recovery failed: The disk went away."}),
    [](const auto& test) { return std::string(test.param.name); });

RecoveryReport reportOf(int ambiguous) {
    RecoveryReport report = test::recoveryReport({1, 2, 3});
    for (int each = 0; each < ambiguous; ++each)
        report.candidates[static_cast<std::size_t>(each)].ambiguous = true;
    return report;
}

TEST(RecoveryFacts, offerTheRecoveryOfAReport) {
    const RecoveryFacts facts = factsOf(reportOf(0));
    EXPECT_TRUE(facts.canRecover);
    EXPECT_FALSE(facts.canSurvey);
    EXPECT_EQ(facts.symbol, QStringLiteral("checkmark.circle.trianglebadge.exclamationmark"));
    EXPECT_EQ(facts.note.toStdString(),
              "Recovered copies are stored in the app’s Application Support folder and included in this and "
              "future backups. Nothing is written into your Messages library.");
}

TEST(RecoveryFacts, putNothingBehindAReportWithoutDoubt) {
    EXPECT_EQ(linesOf(factsOf(reportOf(0))), reportOf(0).summary());
}

TEST(RecoveryFacts, countTheDoubtfulOnesBehindAReport) {
    EXPECT_EQ(linesOf(factsOf(reportOf(2))),
              reportOf(2).summary() + " (2 had several identical cache copies; one was chosen.)");
}

TEST(RecoveryFacts, tellWhatWasRecovered) {
    const RecoveryFacts facts = factsOf(RecoveryOutcome{.recoveredCount = 3, .recoveredBytes = 3'750'000});
    EXPECT_EQ(linesOf(facts), "Recovered: 3 attachments (" + ByteCountText::user().fileSize(3'750'000) + ")");
    EXPECT_EQ(facts.symbol, QStringLiteral("checkmark.circle.fill"));
}

TEST(RecoveryFacts, tellOfFailedCopiesAndTheManifest) {
    const RecoveryFacts facts = factsOf(RecoveryOutcome{.recoveredCount = 3,
                                                        .failedCount = 1,
                                                        .manifestURL = "/home/ada/recovered/manifest.json",
                                                        .recoveredBytes = 0});
    ASSERT_EQ(facts.lines.size(), 3);
    EXPECT_EQ(facts.lines[1], QStringLiteral("1 copies failed and remain missing."));
    EXPECT_EQ(facts.lines[2], QStringLiteral("Manifest: manifest.json"));
}

TEST(ConversationFacts, areEmptyWithoutAConversation) {
    AvatarStore avatars;
    EXPECT_FALSE(conversationFacts(nullptr, avatars).isPresent);
}

TEST(ConversationFacts, countThePeopleOfAGroupWithTheUser) {
    AvatarStore avatars;
    ConversationSummary group = test::conversation("2", "Lighthouse Crew");
    group.participantAddresses = {"+12125550101", "+12125550102", "ada@example.com"};
    EXPECT_EQ(conversationFacts(&group, avatars).peopleLine, QStringLiteral("4 people, including you"));
    group.participantAddresses.resize(1);
    EXPECT_EQ(conversationFacts(&group, avatars).peopleLine, QString());
}

TEST(ConversationFacts, nameThePictureAfterTheTitle) {
    AvatarStore avatars;
    const ConversationSummary grace = test::conversation("1", "Grace");
    EXPECT_EQ(conversationFacts(&grace, avatars).previewLabel, QStringLiteral("Album preview for Grace"));
}

TEST(LocalizedTranslator, asksTheOneLookUp) {
    useTranslation([](std::string_view english) { return "«" + std::string(english) + "»"; });
    LocalizedTranslator translator;
    EXPECT_EQ(translator.translate("Any", "Choose…", nullptr, -1), QStringLiteral("«Choose…»"));
    useTranslation({});
    EXPECT_EQ(translator.translate("Other", "Choose…", "more", 3), QStringLiteral("Choose…"));
    EXPECT_FALSE(translator.isEmpty());
}

} // namespace
} // namespace quillbook
