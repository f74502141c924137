#include "shell/adapter/AppModelAdapter.h"
#include "tests/shell-adapter/FieldFake.h"
#include "tests/support/ModelHarness.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace quillbook::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DesktopFake final : public FileRevealing, public FolderChoosing, public SoundPlaying {
public:
    void reveal(const std::filesystem::path& file) override { calls.push_back("reveal " + file.string()); }
    void open(const std::filesystem::path& file) override { calls.push_back("open " + file.string()); }
    void playCompletion() override { calls.emplace_back("sound"); }
    void chooseFolder(const FolderQuestion& question, Answer answer) override {
        calls.push_back(question.title + "|" + question.prompt + "|" + question.folder.string());
        waiting = std::move(answer);
    }

    std::vector<std::string> calls;
    Answer waiting;
};

class AppModelAdapterTest : public ModelHarness {
protected:
    AppModelAdapterTest() {
        services.avatars = std::make_shared<AvatarStore>();
        services.files = desktop;
        services.folders = desktop;
        services.sound = desktop;
    }
    ~AppModelAdapterTest() override { adapter.reset(); }

    void adapt() { adapter = std::make_unique<AppModelAdapter>(model, services); }
    void atList() {
        startedModel();
        adapt();
    }
    void atSetup() {
        modelAtExportSetup();
        adapt();
    }
    void atCompletion() {
        provider->onPrepared = [](PreparedFake& prepared) {
            prepared.exporter->result.archiveURL = "/home/ada/Downloads/Grace";
        };
        atSetup();
        adapter->startExport();
        settle();
    }

    std::shared_ptr<DesktopFake> desktop = std::make_shared<DesktopFake>();
    AdapterServices services;
    std::unique_ptr<AppModelAdapter> adapter;
};

// Operations reach the model.

TEST_F(AppModelAdapterTest, startsTheModel) {
    makeModel();
    adapt();
    adapter->start();
    settle();
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::chooseConversation);
}

TEST_F(AppModelAdapterTest, turnsThePagesOfTheOnboardingAndEndsIt) {
    preferences->values.clear();
    startedModel();
    adapt();
    adapter->showNextOnboardingPage();
    EXPECT_EQ(state().onboardingPage, 1);
    adapter->finishOnboarding();
    settle();
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::chooseConversation);
}

TEST_F(AppModelAdapterTest, replaysTheOnboarding) {
    atList();
    adapter->replayOnboarding();
    EXPECT_TRUE(adapter->isReplayingOnboarding());
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::onboarding);
}

TEST_F(AppModelAdapterTest, opensThePrivacySettings) {
    atList();
    adapter->openPrivacySettings();
    EXPECT_EQ(checker->openedSettings, 1);
}

TEST_F(AppModelAdapterTest, opensAndClosesTheSetupGuide) {
    atList();
    adapter->openSetupGuide();
    EXPECT_TRUE(state().showingSetupGuide);
    adapter->closeSetupGuide();
    EXPECT_FALSE(state().showingSetupGuide);
}

TEST_F(AppModelAdapterTest, searches) {
    atList();
    adapter->setSearchText(QStringLiteral("Kath"));
    mainThread->advance(std::chrono::milliseconds(220));
    settle();
    EXPECT_THAT(titles(), ElementsAre("Katherine"));
    EXPECT_EQ(adapter->conversations()->count(), 1);
}

TEST_F(AppModelAdapterTest, setsEachFormatAlone) {
    atList();
    adapter->setIncludeJSON(false);
    EXPECT_EQ(state().options,
              (ExportOptions{.includeJSON = false, .includeMarkdown = true, .includeCSV = false}));
    adapter->setIncludeCSV(true);
    EXPECT_EQ(state().options,
              (ExportOptions{.includeJSON = false, .includeMarkdown = true, .includeCSV = true}));
    adapter->setIncludeMarkdown(false);
    EXPECT_EQ(state().options,
              (ExportOptions{.includeJSON = false, .includeMarkdown = false, .includeCSV = true}));
}

TEST_F(AppModelAdapterTest, selectsAndStartsTheSurvey) {
    atList();
    adapter->selectConversation(QStringLiteral("1"));
    settle();
    EXPECT_EQ(state().selectedConversationID, SourceID{"1"});
    EXPECT_THAT(lastPrepared().store->surveys(), ElementsAre(SourceID{"1"}));
}

TEST_F(AppModelAdapterTest, surveysNothingForTheSelectionThatStands) {
    atList();
    adapter->selectConversation(QStringLiteral("1"));
    settle();
    adapter->selectConversation(QStringLiteral("1"));
    settle();
    EXPECT_EQ(lastPrepared().store->surveys().size(), 1U);
}

TEST_F(AppModelAdapterTest, dropsTheSelectionWithAnEmptyID) {
    atList();
    adapter->selectConversation(QStringLiteral("1"));
    adapter->selectConversation(QString());
    EXPECT_EQ(state().selectedConversationID, std::nullopt);
    EXPECT_FALSE(adapter->conversation().isPresent);
}

TEST_F(AppModelAdapterTest, changesTheSource) {
    atList();
    adapter->selectSource(QStringLiteral("open-backup"));
    settle();
    EXPECT_EQ(state().selectedSourceID, "open-backup");
    EXPECT_EQ(adapter->sourceTitle(), QStringLiteral("Ada’s iPhone"));
    EXPECT_FALSE(adapter->isLocalSource());
}

TEST_F(AppModelAdapterTest, callsTheSourceThisMacWhereNoneIsSelected) {
    makeModel();
    adapt();
    EXPECT_EQ(adapter->sourceTitle(), QStringLiteral("This Mac"));
    EXPECT_TRUE(adapter->sources().isEmpty());
}

TEST_F(AppModelAdapterTest, marksTheSelectedSourceAndTheKindOfEach) {
    atList();
    const auto sources = adapter->sources();
    ASSERT_EQ(sources.size(), 3);
    const auto local = sources[0].value<SourceFacts>();
    const auto backup = sources[1].value<SourceFacts>();
    EXPECT_TRUE(local.isSelected);
    EXPECT_EQ(local.symbol, QStringLiteral("desktopcomputer"));
    EXPECT_FALSE(backup.isSelected);
    EXPECT_EQ(backup.symbol, QStringLiteral("iphone"));
}

TEST_F(AppModelAdapterTest, givesTheDeviceBackupsAmongTheSources) {
    provider->sources.push_back(
        {"connected-device", "Ada’s iPad", std::nullopt, ConnectedDeviceWithoutBackup(), false});
    atList();
    EXPECT_EQ(adapter->sources().size(), 4);
    const auto backups = adapter->backupSources();
    ASSERT_EQ(backups.size(), 2);
    EXPECT_EQ(backups[0].value<SourceFacts>().id, QStringLiteral("open-backup"));
    EXPECT_EQ(backups[1].value<SourceFacts>().id, QStringLiteral("locked-backup"));
}

TEST_F(AppModelAdapterTest, givesTheSymbolOfTheSourceInUse) {
    makeModel();
    adapt();
    EXPECT_EQ(adapter->sourceSymbol(), QStringLiteral("desktopcomputer")) << "none yet";
    atList();
    EXPECT_EQ(adapter->sourceSymbol(), QStringLiteral("desktopcomputer"));
    adapter->selectSource(QStringLiteral("open-backup"));
    settle();
    EXPECT_EQ(adapter->sourceSymbol(), QStringLiteral("iphone"));
}

TEST_F(AppModelAdapterTest, goesToTheSetupAndBack) {
    atList();
    adapter->selectConversation(QStringLiteral("1"));
    adapter->continueToExportSetup();
    settle();
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::exportSetup);
    adapter->chooseConversation();
    settle();
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::chooseConversation);
}

TEST_F(AppModelAdapterTest, keepsTheConversationOfTheSetupThatALateSearchFiltersAway) {
    atList();
    adapter->selectConversation("1");
    adapter->setSearchText("nobody of this name");
    adapter->continueToExportSetup();
    mainThread->advance(std::chrono::seconds(1));
    settle();
    ASSERT_EQ(model->selectedConversation(), nullptr);
    EXPECT_EQ(adapter->conversation().title, QStringLiteral("Grace"));
    adapter->chooseConversation();
    settle();
    EXPECT_FALSE(adapter->conversation().isPresent);
}

TEST_F(AppModelAdapterTest, startsAndCancelsTheExport) {
    atSetup();
    adapter->startExport();
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::exporting);
    adapter->cancelExport();
    settle();
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::exportSetup);
    EXPECT_FALSE(adapter->hasError());
}

TEST_F(AppModelAdapterTest, exportsWithAllOptionalFormatsOff) {
    atSetup();
    adapter->setIncludeJSON(false);
    adapter->setIncludeMarkdown(false);
    adapter->setIncludeCSV(false);
    adapter->startExport();
    settle();
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::complete);
    ASSERT_EQ(lastPrepared().exporter->requests().size(), 1U);
    EXPECT_EQ(lastPrepared().exporter->requests()[0].options, (ExportOptions{false, false, false}));
}

TEST_F(AppModelAdapterTest, tellsOfAnErrorUntilItIsDismissed) {
    atSetup();
    destinationIsWritable = false;
    adapter->startExport();
    EXPECT_TRUE(adapter->hasError());
    EXPECT_EQ(
        adapter->errorMessage(),
        QStringLiteral("This folder can’t be written to. Choose a different location to save the album."));
    adapter->dismissError();
    EXPECT_FALSE(adapter->hasError());
    EXPECT_EQ(adapter->errorMessage(), QStringLiteral("An unexpected error occurred."));
}

TEST_F(AppModelAdapterTest, surveysTheCaches) {
    atSetup();
    adapter->surveyCaches();
    EXPECT_EQ(adapter->recovery().state, QStringLiteral("surveying"));
}

// The album.

TEST_F(AppModelAdapterTest, revealsAndOpensTheAlbum) {
    atCompletion();
    adapter->showInFileManager();
    adapter->openArchive();
    EXPECT_THAT(desktop->calls,
                ElementsAre("reveal /home/ada/Downloads/Grace", "open /home/ada/Downloads/Grace/index.html"));
}

TEST_F(AppModelAdapterTest, revealsAndOpensNothingWithoutAnAlbum) {
    atSetup();
    adapter->showInFileManager();
    adapter->openArchive();
    EXPECT_THAT(desktop->calls, IsEmpty());
}

TEST_F(AppModelAdapterTest, looksInTheDeviceBackup) {
    atCompletion();
    adapter->lookInDeviceBackup();
    settle();
    EXPECT_EQ(state().selectedSourceID, "open-backup");
    EXPECT_EQ(adapter->searchText(), QStringLiteral("Grace"));
}

// Recovery.

TEST_F(AppModelAdapterTest, recoversNothingWithoutAReport) {
    atSetup();
    adapter->recoverFromCaches();
    settle();
    EXPECT_THAT(caches->recoveries(), IsEmpty());
}

TEST_F(AppModelAdapterTest, recoversWhatTheReportOffers) {
    caches->report = recoveryReport({1, 2});
    provider->onPrepared = [](PreparedFake& prepared) {
        prepared.store->survey = [](const SourceID&, std::stop_token) {
            return AttachmentStorageSurvey{.local = 1, .missing = 2};
        };
        prepared.store->missing = [](const SourceID&, std::stop_token) {
            return std::vector{missingAttachment(1), missingAttachment(2)};
        };
    };
    atSetup();
    ASSERT_TRUE(adapter->recovery().canRecover);
    adapter->recoverFromCaches();
    settle();
    ASSERT_EQ(caches->recoveries().size(), 1U);
    EXPECT_EQ(caches->recoveries()[0].candidates, recoveryReport({1, 2}).candidates);
}

// The destination.

TEST_F(AppModelAdapterTest, asksForAFolderFromTheDestinationOn) {
    atSetup();
    adapter->chooseDestination();
    EXPECT_THAT(desktop->calls, ElementsAre("Choose Export Folder|Choose|/home/ada/Downloads"));
}

TEST_F(AppModelAdapterTest, movesTheDestinationAndThenLooksForAnEarlierAlbumThere) {
    atSetup();
    priorArchiveQuestions.clear();
    adapter->chooseDestination();
    desktop->waiting("/media/disk");
    settle();
    EXPECT_EQ(state().destination, "/media/disk");
    EXPECT_THAT(priorArchiveQuestions,
                ElementsAre(std::pair(SourceID{"1"}, std::filesystem::path("/media/disk"))));
}

TEST_F(AppModelAdapterTest, changesNothingWhereNoFolderIsChosen) {
    atSetup();
    priorArchiveQuestions.clear();
    announcements.clear();
    adapter->chooseDestination();
    desktop->waiting(std::nullopt);
    settle();
    EXPECT_EQ(state().destination, "/home/ada/Downloads");
    EXPECT_THAT(priorArchiveQuestions, IsEmpty());
}

TEST_F(AppModelAdapterTest, takesNoAnswerAfterItsEnd) {
    atSetup();
    adapter->chooseDestination();
    adapter.reset();
    desktop->waiting("/media/disk");
    EXPECT_EQ(state().destination, "/home/ada/Downloads");
}

// The password.

TEST_F(AppModelAdapterTest, submitsThePasswordAndEmptiesTheField) {
    atList();
    adapter->selectSource(QStringLiteral("locked-backup"));
    EXPECT_TRUE(adapter->isAskingForPassword());
    EXPECT_EQ(adapter->passwordDevice(), QStringLiteral("Ada’s iPhone"));
    FieldFake field;
    field.text = QString::fromUtf8("päss🔑");
    adapter->submitBackupPassword(&field);
    EXPECT_EQ(field.text, QString());
    settle();
    EXPECT_EQ(lastPrepared().password, "päss🔑");
    EXPECT_FALSE(adapter->isAskingForPassword());
}

TEST_F(AppModelAdapterTest, overwritesThePasswordInTheMemoryOfTheField) {
    atList();
    adapter->selectSource(QStringLiteral("locked-backup"));
    FieldFake field;
    field.text = QString::fromUtf8("secret word"); // On the heap, not in the program.
    const QString shared = field.text;
    adapter->submitBackupPassword(&field);
    EXPECT_EQ(shared, QString(11, QChar(u'\0')));
}

TEST_F(AppModelAdapterTest, overwritesThePasswordWhereNobodyWaitsForIt) {
    atList();
    FieldFake field;
    field.text = QString::fromUtf8("secret word");
    const QString shared = field.text;
    adapter->submitBackupPassword(&field);
    settle();
    EXPECT_EQ(shared, QString(11, QChar(u'\0')));
    EXPECT_EQ(field.text, QString());
    EXPECT_EQ(provider->preparations(), 1) << "of this Mac alone";
}

TEST_F(AppModelAdapterTest, leavesThePasswordInTheFieldWhileASourceIsPrepared) {
    atList();
    EXPECT_TRUE(adapter->canSubmitPassword());
    adapter->selectSource(QStringLiteral("open-backup"));
    adapter->selectSource(QStringLiteral("locked-backup"));
    ASSERT_TRUE(adapter->isAskingForPassword());
    EXPECT_FALSE(adapter->canSubmitPassword());
    FieldFake field;
    field.text = QString::fromUtf8("secret word");
    adapter->submitBackupPassword(&field);
    EXPECT_EQ(field.text, QStringLiteral("secret word"));
    settle();
    EXPECT_TRUE(adapter->canSubmitPassword());
}

TEST_F(AppModelAdapterTest, forgetsThePasswordInTheMemoryOfTheField) {
    atList();
    FieldFake field;
    field.text = QString::fromUtf8("secret word");
    const QString shared = field.text;
    adapter->forgetPassword(&field);
    EXPECT_EQ(shared, QString(11, QChar(u'\0')));
    EXPECT_EQ(field.text, QString());
    adapter->forgetPassword(&field);
    adapter->forgetPassword(nullptr);
    EXPECT_EQ(field.text, QString());
}

TEST_F(AppModelAdapterTest, takesNoPasswordOutOfNothing) {
    atList();
    adapter->selectSource(QStringLiteral("locked-backup"));
    adapter->submitBackupPassword(nullptr);
    EXPECT_TRUE(adapter->isAskingForPassword());
}

TEST_F(AppModelAdapterTest, dropsTheQuestionForAPassword) {
    atList();
    adapter->selectSource(QStringLiteral("locked-backup"));
    adapter->cancelBackupPassword();
    EXPECT_FALSE(adapter->isAskingForPassword());
    EXPECT_EQ(adapter->passwordDevice(), QString());
}

TEST_F(AppModelAdapterTest, tellsOfAWrongPassword) {
    atList();
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) {
        throw SpokenError("The password is wrong.");
    };
    adapter->selectSource(QStringLiteral("locked-backup"));
    FieldFake field;
    field.text = QString::fromUtf8("wrong");
    adapter->submitBackupPassword(&field);
    settle();
    EXPECT_FALSE(adapter->isAskingForPassword());
    EXPECT_EQ(adapter->errorMessage(), QStringLiteral("The password is wrong."));
    EXPECT_EQ(state().selectedSourceID, "local-mac");
}

// Updates.

TEST_F(AppModelAdapterTest, hasNoUpdatesWithoutAService) {
    atList();
    EXPECT_FALSE(adapter->hasUpdates());
    EXPECT_FALSE(adapter->canCheckForUpdates());
    adapter->checkForUpdates();
}

TEST_F(AppModelAdapterTest, checksForUpdatesWhereTheServiceCan) {
    int checks = 0;
    bool can = false;
    services.checkForUpdates = [&checks] { ++checks; };
    services.canCheckForUpdates = [&can] { return can; };
    atList();
    EXPECT_TRUE(adapter->hasUpdates());
    EXPECT_FALSE(adapter->canCheckForUpdates());
    can = true;
    EXPECT_TRUE(adapter->canCheckForUpdates());
    adapter->checkForUpdates();
    EXPECT_EQ(checks, 1);
}

// The commands.

struct Enabled {
    bool choose;
    bool backUp;
    bool cancel;
    bool operator==(const Enabled&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Enabled& each) {
        return out << each.choose << each.backUp << each.cancel;
    }
};

class Commands : public AppModelAdapterTest {
protected:
    Enabled enabled() const {
        return {adapter->canChooseConversation(), adapter->canBackUpSelected(), adapter->canCancelBackup()};
    }
};

TEST_F(Commands, areOffOnTheAccessScreen) {
    checker->status = {MessagesAccessStatus::Kind::denied, {}};
    atList();
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::access);
    EXPECT_EQ(enabled(), (Enabled{false, false, false}));
}

TEST_F(Commands, areOffInTheFirstOnboardingButForTheChoiceWithAccess) {
    preferences->values.clear();
    atList();
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::onboarding);
    EXPECT_EQ(enabled(), (Enabled{true, false, false}));
}

TEST_F(Commands, offerTheBackupOnceAConversationIsSelected) {
    atList();
    EXPECT_EQ(enabled(), (Enabled{true, false, false}));
    adapter->selectConversation(QStringLiteral("1"));
    EXPECT_EQ(enabled(), (Enabled{true, true, false}));
}

TEST_F(Commands, offerNoBackupOfWhatTheSearchFilteredAway) {
    atList();
    adapter->selectConversation(QStringLiteral("1"));
    adapter->setSearchText(QStringLiteral("Katherine"));
    mainThread->advance(std::chrono::milliseconds(220));
    settle();
    EXPECT_EQ(adapter->selectedConversationID(), QStringLiteral("1"));
    EXPECT_EQ(enabled(), (Enabled{true, false, false}));
}

TEST_F(Commands, offerNoSecondBackupOnTheSetup) {
    atSetup();
    EXPECT_EQ(enabled(), (Enabled{true, false, false}));
}

TEST_F(Commands, offerTheCancellingAloneDuringAnExport) {
    atSetup();
    adapter->startExport();
    EXPECT_EQ(enabled(), (Enabled{false, false, true}));
}

TEST_F(Commands, offerTheChoiceOnceAnAlbumIsMade) {
    atCompletion();
    EXPECT_EQ(enabled(), (Enabled{true, false, false}));
}

TEST_F(AppModelAdapterTest, leavesTheModelAtItsEnd) {
    atList();
    adapter.reset();
    model->setShowingSetupGuide(true); // Nobody listens who is gone.
    EXPECT_TRUE(state().showingSetupGuide);
}

} // namespace
} // namespace quillbook::test
