#include "shell/application/AppDelegate.h"
#include "tests/shell-application/DesktopFakes.h"
#include "tests/shell-application/RelocationFakes.h"
#include "tests/support/ModelHarness.h"

#include <set>

#include <gmock/gmock.h>

namespace quillbook::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AppDelegateTest : public ModelHarness {
protected:
    AppDelegateServices services() {
        return {
            .hasEnvironmentKey = [this](const std::string& key) { return environment.count(key) > 0; },
            .bundle = bundle,
            .relocationHost = host,
            .setRegularActivation = [this] { application->calls.emplace_back("regular"); },
            .sweep =
                [this] {
                    ++sweeps;
                    if (sweepFailure) throw SpokenError(*sweepFailure);
                },
            .mainThread = mainThread,
            .backgroundRunner = runner,
            .application = application,
            .notificationCenter = center,
            .files = files,
        };
    }
    std::unique_ptr<AppDelegate> launched() {
        auto delegate = std::make_unique<AppDelegate>(services());
        delegate->applicationDidFinishLaunching();
        return delegate;
    }
    /// As if the user clicked the notification.
    void click(const NotificationInformation& information) {
        center->response(information, [this] { ++completions; });
    }

    std::set<std::string> environment;
    std::filesystem::path bundle = "/Applications/Quillbook.app";
    std::shared_ptr<FakeRelocationHost> host = std::make_shared<FakeRelocationHost>();
    std::shared_ptr<FakeApplication> application = std::make_shared<FakeApplication>();
    std::shared_ptr<FakeNotificationCenter> center = std::make_shared<FakeNotificationCenter>();
    std::shared_ptr<FakeFiles> files = std::make_shared<FakeFiles>();
    int sweeps = 0;
    std::optional<std::string> sweepFailure;
    int completions = 0;
};

TEST_F(AppDelegateTest, launchSweepsInTheBackgroundWithUtilityPriority) {
    const auto delegate = launched();
    EXPECT_EQ(sweeps, 0);
    EXPECT_THAT(runner->priorities, ElementsAre(BackgroundRunner::Priority::utility));
    background->performAll();
    EXPECT_EQ(sweeps, 1);
}

TEST_F(AppDelegateTest, failureOfTheSweepIsIgnored) {
    sweepFailure = "words";
    const auto delegate = launched();
    background->performAll();
    EXPECT_EQ(sweeps, 1);
}

TEST_F(AppDelegateTest, launchBringsTheWindowToTheFrontOnTheNextTurn) {
    const auto delegate = launched();
    EXPECT_THAT(application->calls, ElementsAre("regular"));
    mainThread->turn();
    EXPECT_THAT(application->calls, ElementsAre("regular", "activate"));
}

TEST_F(AppDelegateTest, launchNeedsNoActivationPolicy) {
    auto given = services();
    given.setRegularActivation = {};
    AppDelegate(given).applicationDidFinishLaunching();
    mainThread->turn();
    EXPECT_THAT(application->calls, ElementsAre("activate"));
}

TEST_F(AppDelegateTest, launchDoesNotStartTheModel) {
    makeModel();
    AppDelegate delegate(services());
    delegate.model = model;
    delegate.applicationDidFinishLaunching();
    settle();
    EXPECT_EQ(checker->checks, 0);
}

TEST_F(AppDelegateTest, noStepRunsUnderTheTestHarness) {
    bundle = "/Volumes/Image/Quillbook.app";
    for (const char* key : {"XCTestConfigurationFilePath", "XCTestBundlePath"}) {
        environment = {key};
        const auto delegate = launched();
        settle();
        EXPECT_EQ(sweeps, 0) << key;
        EXPECT_FALSE(center->response) << key;
        EXPECT_THAT(application->calls, IsEmpty()) << key;
        EXPECT_THAT(host->calls, IsEmpty()) << key;
    }
}

TEST_F(AppDelegateTest, otherKeysOfTheEnvironmentDoNotMatter) {
    environment = {"XCTest", "XCTestSessionIdentifier"};
    const auto delegate = launched();
    EXPECT_EQ(background->waiting(), 1U);
}

struct TemporaryPlace {
    const char* name;
    const char* bundle;
};

class TemporaryPlaceLaunch : public AppDelegateTest, public testing::WithParamInterface<TemporaryPlace> {};

TEST_P(TemporaryPlaceLaunch, relocatesOnTheNextTurnAndStartsNothingElse) {
    bundle = GetParam().bundle;
    const auto delegate = launched();
    EXPECT_THAT(application->calls, ElementsAre("regular"));
    EXPECT_THAT(host->calls, IsEmpty());
    mainThread->turn();
    EXPECT_THAT(application->calls, ElementsAre("regular", "activate"));
    EXPECT_THAT(host->calls, ElementsAre("alert", "terminate"));
    EXPECT_EQ(background->waiting(), 0U);
    EXPECT_FALSE(center->response);
}

INSTANTIATE_TEST_SUITE_P(Table, TemporaryPlaceLaunch,
                         testing::Values(TemporaryPlace{"diskImage", "/Volumes/Some Image/Quillbook.app"},
                                         TemporaryPlace{"translocated",
                                                        "/private/var/AppTranslocation/1/d/Quillbook.app"}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(AppDelegateTest, nothingRelocatesWithoutAHost) {
    bundle = "/Volumes/Some Image/Quillbook.app";
    host = nullptr;
    const auto delegate = launched();
    settle();
    EXPECT_EQ(sweeps, 1);
    EXPECT_TRUE(center->response);
}

TEST_F(AppDelegateTest, clickedNotificationRevealsItsAlbum) {
    const auto delegate = launched();
    click({{"archive", std::string("/albums/lake house")}});
    EXPECT_THAT(files->revealed, ElementsAre("/albums/lake house"));
    EXPECT_THAT(files->opened, IsEmpty());
    EXPECT_EQ(completions, 1);
}

TEST_F(AppDelegateTest, notificationWithoutAnAlbumDoesNothingAndCompletes) {
    const auto delegate = launched();
    click({});
    click({{"archive", std::int64_t{7}}});
    click({{"Archive", std::string("/albums/lake house")}});
    EXPECT_THAT(files->revealed, IsEmpty());
    EXPECT_EQ(completions, 3);
}

TEST_F(AppDelegateTest, notificationsShowBannerAndSoundInFront) {
    EXPECT_EQ(AppDelegate::presentationOptions, 18U);
}

TEST_F(AppDelegateTest, closingTheWindowQuits) {
    EXPECT_TRUE(AppDelegate(services()).applicationShouldTerminateAfterLastWindowClosed());
}

TEST_F(AppDelegateTest, reopeningIsLeftToTheSystem) {
    EXPECT_TRUE(AppDelegate(services()).applicationShouldHandleReopen());
}

TEST_F(AppDelegateTest, endWithoutAModelIsQuiet) {
    AppDelegate(services()).applicationWillTerminate();
}

TEST_F(AppDelegateTest, endDuringAnExportCancelsItAndClosesTheSource) {
    exportingModel();
    std::optional<bool> isCancelled;
    lastPrepared().exporter->answer = [&](const auto&, const std::stop_token& stop) {
        isCancelled = stop.stop_requested();
        return ExportResult();
    };
    AppDelegate delegate(services());
    delegate.model = model;
    delegate.applicationWillTerminate();
    EXPECT_EQ(*lastPrepared().teardowns, 1);
    settle();
    EXPECT_NE(isCancelled, false);
    EXPECT_NE(state().screen, AppScreen::complete);
}

} // namespace
} // namespace quillbook::test
