#include "tests/support/ModelHarness.h"

namespace quillbook::test {
namespace {

using Kind = MessagesAccessStatus::Kind;

class AppModelStart : public ModelHarness {};

TEST_F(AppModelStart, freshModelHasTheFirstValues) {
    makeModel();
    EXPECT_EQ(state().screen, AppScreen::onboarding);
    EXPECT_EQ(state().accessStatus.kind, Kind::checking);
    EXPECT_EQ(state().progress, (ExportProgress{ExportStage::preparing, 0, 1, "Preparing"}));
    EXPECT_EQ(state().onboardingPage, 0);
    EXPECT_FALSE(state().isLoading || state().showingSetupGuide || state().isReplayingOnboarding);
    EXPECT_FALSE(state().result || state().errorMessage || state().selectedSourceID ||
                 state().selectedConversationID || state().pendingPasswordSource || state().priorArchive ||
                 state().attachmentStorage || state().cacheRecovery);
    EXPECT_TRUE(state().conversations.empty() && state().availableSources.empty() &&
                state().searchText.empty());
    EXPECT_TRUE(state().store == nullptr && state().exporter == nullptr);
    EXPECT_FALSE(model->isExporting());
}

TEST_F(AppModelStart, destinationIsTheDownloadsFolder) {
    makeModel();
    EXPECT_EQ(state().destination, "/home/ada/Downloads");
}

TEST_F(AppModelStart, destinationIsTheHomeFolderWithoutDownloads) {
    downloads.reset();
    makeModel();
    EXPECT_EQ(state().destination, "/home/ada");
}

TEST_F(AppModelStart, freshUserGetsJSONAndMarkdownButNoCSV) {
    makeModel();
    EXPECT_EQ(state().options, (ExportOptions{true, true, false}));
}

TEST_F(AppModelStart, optionsComeFromThePreferences) {
    preferences->values["export.includeJSON"] = false;
    preferences->values["export.includeMarkdown"] = false;
    preferences->values["export.includeCSV"] = true;
    makeModel();
    EXPECT_EQ(state().options, (ExportOptions{false, false, true}));
}

TEST_F(AppModelStart, preferenceThatIsNoTruthValueCountsAsAbsent) {
    preferences->values["export.includeJSON"] = std::string("no");
    preferences->values["export.includeCSV"] = std::string("yes");
    preferences->values["onboarding.completed"] = std::string("true");
    startedModel();
    EXPECT_EQ(state().options, ExportOptions());
    EXPECT_EQ(state().screen, AppScreen::onboarding);
}

TEST_F(AppModelStart, eachChangeOfTheOptionsWritesAllThreeKeys) {
    makeModel();
    model->setOptions({true, true, true});
    EXPECT_EQ(preferences->writes, (std::vector<std::string>{"export.includeJSON", "export.includeMarkdown",
                                                             "export.includeCSV"}));
    EXPECT_EQ(preferences->truth("export.includeJSON"), true);
    EXPECT_EQ(preferences->truth("export.includeMarkdown"), true);
    EXPECT_EQ(preferences->truth("export.includeCSV"), true);
    EXPECT_EQ(announcements, std::vector{AppModelProperty::options});
}

TEST_F(AppModelStart, equalOptionsWriteNothing) {
    makeModel();
    model->setOptions({true, true, false});
    EXPECT_TRUE(preferences->writes.empty());
    EXPECT_TRUE(announcements.empty());
}

TEST_F(AppModelStart, equalValuesAreNotAnnounced) {
    makeModel();
    model->setDestination("/home/ada/Downloads");
    model->setOnboardingPage(0);
    model->setShowingSetupGuide(false);
    model->setSelectedConversationID(std::nullopt);
    model->dismissError();
    EXPECT_TRUE(announcements.empty());
}

TEST_F(AppModelStart, eachSetterAnnouncesItsProperty) {
    makeModel();
    model->setDestination("/elsewhere");
    model->setOnboardingPage(2);
    model->setShowingSetupGuide(true);
    model->setSelectedConversationID(SourceID{"1"});
    model->setSearchText("a");
    using P = AppModelProperty;
    EXPECT_EQ(announcements, (std::vector{P::destination, P::onboardingPage, P::showingSetupGuide,
                                          P::selectedConversationID, P::searchText}));
}

TEST_F(AppModelStart, withoutCompletedOnboardingStopsThere) {
    preferences->values.clear();
    startedModel();
    EXPECT_EQ(state().screen, AppScreen::onboarding);
    EXPECT_TRUE(state().accessStatus.isGranted());
    EXPECT_EQ(provider->listings, 0);
}

struct AccessCase {
    const char* name;
    MessagesAccessStatus status;
};

class AppModelStartWithoutAccess : public ModelHarness, public testing::WithParamInterface<AccessCase> {};

TEST_P(AppModelStartWithoutAccess, showsTheAccessScreenAndTheStatus) {
    checker->status = GetParam().status;
    startedModel();
    EXPECT_EQ(state().screen, AppScreen::access);
    EXPECT_EQ(state().accessStatus, GetParam().status);
    EXPECT_EQ(provider->listings, 0);
}

INSTANTIATE_TEST_SUITE_P(Table, AppModelStartWithoutAccess,
                         testing::Values(AccessCase{"denied", {Kind::denied, {}}},
                                         AccessCase{"databaseMissing", {Kind::databaseMissing, {}}},
                                         AccessCase{"failed", MessagesAccessStatus::failed("Disk trouble.")}),
                         [](const auto& step) { return std::string(step.param.name); });

TEST_F(AppModelStart, checkThatThrowsCountsAsFailedAccess) {
    checker->answer = [](std::stop_token) -> MessagesAccessStatus { throw SpokenError("No such luck."); };
    startedModel();
    EXPECT_EQ(state().accessStatus, MessagesAccessStatus::failed("No such luck."));
}

TEST_F(AppModelStart, checksInTheBackground) {
    makeModel();
    model->start();
    mainThread->turn();
    EXPECT_EQ(checker->checks, 0);
    EXPECT_EQ(background->waiting(), 1U);
    EXPECT_EQ(state().accessStatus.kind, Kind::checking);
}

TEST_F(AppModelStart, statusIsAnnouncedOnlyWhenItChanges) {
    checker->status = {Kind::checking, {}};
    startedModel();
    model->start();
    settle();
    EXPECT_EQ(announced(AppModelProperty::accessStatus), 0);
    checker->status = {Kind::denied, {}};
    model->start();
    settle();
    EXPECT_EQ(announced(AppModelProperty::accessStatus), 1);
    model->start(); // To checking and back to denied.
    settle();
    EXPECT_EQ(announced(AppModelProperty::accessStatus), 3);
}

TEST_F(AppModelStart, opensThisMacsLibraryAndListsIt) {
    makeModel();
    bool done = false;
    model->start([&] { done = true; });
    EXPECT_FALSE(done);
    settle();
    EXPECT_TRUE(done);
    EXPECT_EQ(state().screen, AppScreen::chooseConversation);
    EXPECT_EQ(state().availableSources, provider->sources);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
    EXPECT_EQ(lastPrepared().password, std::nullopt);
    EXPECT_EQ(state().store, lastPrepared().store);
    EXPECT_EQ(state().exporter, lastPrepared().exporter);
    EXPECT_EQ(titles(), (std::vector<std::string>{"Grace", "Katherine"}));
    EXPECT_FALSE(state().isLoading);
}

TEST_F(AppModelStart, isLoadingFromThePreparationToTheList) {
    makeModel();
    model->start();
    for (int step = 0; step < 2; ++step) { // The check, the sources.
        EXPECT_FALSE(state().isLoading);
        background->perform();
        mainThread->turn();
    }
    for (int step = 0; step < 2; ++step) { // The preparation, the list.
        EXPECT_TRUE(state().isLoading);
        background->perform();
        mainThread->turn();
    }
    EXPECT_EQ(announced(AppModelProperty::isLoading), 2);
}

TEST_F(AppModelStart, withoutALocalSourceTellsSo) {
    provider->sources = {backupSource("open-backup", false)};
    startedModel();
    EXPECT_EQ(state().errorMessage, "No message sources are available.");
    EXPECT_EQ(state().screen, AppScreen::chooseConversation);
    EXPECT_EQ(state().store, nullptr);
    EXPECT_EQ(provider->preparations(), 0);
}

TEST_F(AppModelStart, listingThatThrowsIsTold) {
    provider->listing = [](std::stop_token) -> std::vector<MessageSource> {
        throw SpokenError("Listing broke.");
    };
    startedModel();
    EXPECT_EQ(state().errorMessage, "Listing broke.");
    EXPECT_EQ(state().screen, AppScreen::chooseConversation);
}

TEST_F(AppModelStart, anythingThrownIsTold) {
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) { throw 7; };
    startedModel();
    EXPECT_EQ(state().errorMessage, "An unexpected error occurred.");
}

TEST_F(AppModelStart, againPreparesTheLocalSourceAgain) {
    startedModel();
    const PreparedFake first = lastPrepared();
    model->start();
    settle();
    EXPECT_EQ(provider->preparations(), 2);
    EXPECT_EQ(*first.teardowns, 1);
    EXPECT_EQ(*lastPrepared().teardowns, 0);
    EXPECT_EQ(state().store, lastPrepared().store);
}

TEST_F(AppModelStart, laterStartTakesOverFromOneUnderWay) {
    checker->answer = [this](std::stop_token) {
        return MessagesAccessStatus{checker->checks == 1 ? Kind::granted : Kind::denied, {}};
    };
    makeModel();
    int done = 0;
    model->start([&] { ++done; });
    model->start([&] { ++done; });
    background->perform(1); // The later one is checked first and finds access.
    mainThread->turn();
    EXPECT_TRUE(state().accessStatus.isGranted());
    settle();
    EXPECT_EQ(done, 2);
    EXPECT_TRUE(state().accessStatus.isGranted());
    EXPECT_EQ(state().screen, AppScreen::chooseConversation);
    EXPECT_EQ(provider->preparations(), 1);
}

TEST_F(AppModelStart, readyStoreIsUsedAndNoSourcesAreListed) {
    const auto store = std::make_shared<FakeStore>(std::vector{conversation("7", "Hedy")});
    const auto exporter = std::make_shared<FakeExporter>();
    makeModel({store, exporter, {}});
    model->start();
    settle();
    EXPECT_EQ(state().screen, AppScreen::chooseConversation);
    EXPECT_EQ(titles(), std::vector<std::string>{"Hedy"});
    EXPECT_EQ(state().exporter, exporter);
    EXPECT_EQ(provider->listings + provider->preparations(), 0);
}

TEST_F(AppModelStart, finishedOnboardingIsRememberedAndStarts) {
    preferences->values.clear();
    startedModel();
    model->setOnboardingPage(2);
    model->finishOnboarding();
    EXPECT_EQ(preferences->truth("onboarding.completed"), true);
    EXPECT_EQ(state().onboardingPage, 0);
    settle();
    EXPECT_EQ(state().screen, AppScreen::chooseConversation);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
}

TEST_F(AppModelStart, replayShowsTheOnboardingFromItsFirstPage) {
    startedModel();
    model->setOnboardingPage(1);
    model->replayOnboarding();
    EXPECT_EQ(state().screen, AppScreen::onboarding);
    EXPECT_EQ(state().onboardingPage, 0);
    EXPECT_TRUE(state().isReplayingOnboarding);
}

TEST_F(AppModelStart, replayWithAccessEndsAtTheListAndReloadsNothing) {
    startedModel();
    model->replayOnboarding();
    model->finishOnboarding();
    EXPECT_EQ(state().screen, AppScreen::chooseConversation);
    EXPECT_FALSE(state().isReplayingOnboarding);
    EXPECT_EQ(background->waiting() + mainThread->posted(), 0U);
}

TEST_F(AppModelStart, replayWithoutAccessEndsAtTheAccessScreen) {
    checker->status = {Kind::denied, {}};
    startedModel();
    model->replayOnboarding();
    model->finishOnboarding();
    EXPECT_EQ(state().screen, AppScreen::access);
    EXPECT_EQ(background->waiting(), 0U);
}

TEST_F(AppModelStart, privacySettingsAreOpenedByTheChecker) {
    makeModel();
    model->openPrivacySettings();
    EXPECT_EQ(checker->openedSettings, 1);
}

TEST_F(AppModelStart, observerMayReplaceItself) {
    makeModel();
    int later = 0;
    model->observe([&](AppModelProperty) { model->observe([&](AppModelProperty) { ++later; }); });
    model->setOnboardingPage(1);
    model->setOnboardingPage(2);
    EXPECT_EQ(later, 1);
}

} // namespace
} // namespace quillbook::test
