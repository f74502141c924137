#include "core/records/Cancellation.h"
#include "tests/support/ModelHarness.h"

namespace quillbook::test {
namespace {

class AppModelSources : public ModelHarness {
protected:
    /// Started, with the encrypted backup picked.
    void modelAtPasswordPrompt() {
        startedModel();
        model->selectSource("locked-backup");
    }
};

TEST_F(AppModelSources, deviceBackupIsTheFirstThatIsNotLocal) {
    provider->sources = {
        localMacSource(),
        {"connected-device", "Ada’s iPad", std::nullopt, ConnectedDeviceWithoutBackup(), false},
        backupSource("open-backup", false)};
    startedModel();
    ASSERT_NE(model->deviceBackupSource(), nullptr);
    EXPECT_EQ(model->deviceBackupSource()->id, "connected-device");
}

TEST_F(AppModelSources, noDeviceBackupWithoutOne) {
    provider->sources = {localMacSource()};
    startedModel();
    EXPECT_EQ(model->deviceBackupSource(), nullptr);
}

TEST_F(AppModelSources, switchClosesTheOldSourceAndListsTheNew) {
    startedModel();
    const PreparedFake local = lastPrepared();
    model->setSelectedConversationID(SourceID{"1"});
    bool done = false;
    model->selectSource("open-backup", [&] { done = true; });
    settle();
    EXPECT_TRUE(done);
    EXPECT_EQ(*local.teardowns, 1);
    EXPECT_EQ(*lastPrepared().teardowns, 0);
    EXPECT_EQ(state().store, lastPrepared().store);
    EXPECT_EQ(state().exporter, lastPrepared().exporter);
    EXPECT_EQ(state().selectedSourceID, "open-backup");
    EXPECT_EQ(state().selectedConversationID, std::nullopt);
    EXPECT_EQ(titles(), (std::vector<std::string>{"Grace", "Rosalind"}));
    EXPECT_FALSE(state().isLoading);
}

TEST_F(AppModelSources, oldSourceIsClosedBeforeTheNewStandsAndAfterItIsReady) {
    startedModel();
    const auto order =
        std::make_shared<std::vector<std::string>>(); // The last teardown runs after this test.
    provider->onPrepared = [order](PreparedFake& fake) { order->push_back("prepared " + fake.sourceID); };
    provider->onTeardown = [order](const std::string& id) { order->push_back("closed " + id); };
    model->observe([order](AppModelProperty property) {
        if (property == AppModelProperty::store) order->emplace_back("installed");
    });
    // The running library was prepared before the recorder was there, so it is replaced once first.
    model->selectSource("open-backup");
    settle();
    order->clear();
    model->selectSource("local-mac");
    settle();
    EXPECT_EQ(*order, (std::vector<std::string>{"prepared local-mac", "closed open-backup", "installed"}));
}

TEST_F(AppModelSources, listIsEmptyWhileTheNewOneIsAskedFor) {
    startedModel();
    model->selectSource("open-backup");
    EXPECT_EQ(titles().size(), 2U);
    background->perform();
    mainThread->turn();
    EXPECT_TRUE(titles().empty());
    EXPECT_TRUE(state().isLoading);
}

TEST_F(AppModelSources, sourceInUseIsNotSelectedAgain) {
    startedModel();
    bool done = false;
    model->selectSource("local-mac", [&] { done = true; });
    EXPECT_TRUE(done);
    EXPECT_TRUE(announcements.empty());
    EXPECT_EQ(background->waiting(), 0U);
}

TEST_F(AppModelSources, unknownSourceIsNotSelected) {
    startedModel();
    bool done = false;
    model->selectSource("nowhere", [&] { done = true; });
    EXPECT_TRUE(done);
    EXPECT_TRUE(announcements.empty());
    EXPECT_EQ(background->waiting(), 0U);
}

TEST_F(AppModelSources, selectionDuringAPreparationIsDropped) {
    provider->sources.push_back(backupSource("other-backup", false));
    startedModel();
    model->selectSource("open-backup");
    bool done = false;
    model->selectSource("other-backup", [&] { done = true; });
    EXPECT_TRUE(done);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
    settle();
    EXPECT_EQ(state().selectedSourceID, "open-backup");
    EXPECT_EQ(provider->preparations(), 2);
}

TEST_F(AppModelSources, selectionWhileTheNewListLoadsIsDropped) {
    startedModel();
    model->selectSource("open-backup");
    background->perform();
    mainThread->turn();
    model->selectSource("local-mac");
    settle();
    EXPECT_EQ(state().selectedSourceID, "open-backup");
}

TEST_F(AppModelSources, selectionAfterAPreparationIsTakenAgain) {
    startedModel();
    model->selectSource("open-backup");
    settle();
    model->selectSource("local-mac");
    settle();
    EXPECT_EQ(state().selectedSourceID, "local-mac");
}

TEST_F(AppModelSources, failedPreparationLeavesTheOldSourceInUse) {
    startedModel();
    const PreparedFake local = lastPrepared();
    model->setSelectedConversationID(SourceID{"1"});
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) {
        throw SpokenError("Backup is damaged.");
    };
    bool done = false;
    model->selectSource("open-backup", [&] { done = true; });
    settle();
    EXPECT_TRUE(done);
    EXPECT_EQ(state().errorMessage, "Backup is damaged.");
    EXPECT_EQ(*local.teardowns, 0);
    EXPECT_EQ(state().store, local.store);
    EXPECT_EQ(state().exporter, local.exporter);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
    EXPECT_EQ(state().selectedConversationID, SourceID{"1"});
    EXPECT_EQ(titles(), (std::vector<std::string>{"Grace", "Katherine"}));
    EXPECT_FALSE(state().isLoading);
}

TEST_F(AppModelSources, failedPreparationAllowsTheNext) {
    startedModel();
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) {
        throw SpokenError("Backup is damaged.");
    };
    model->selectSource("open-backup");
    settle();
    provider->beforePrepared = nullptr;
    model->selectSource("open-backup");
    EXPECT_EQ(state().errorMessage, std::nullopt);
    settle();
    EXPECT_EQ(state().selectedSourceID, "open-backup");
}

TEST_F(AppModelSources, cancelledPreparationShowsNothing) {
    startedModel();
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) { throw CancellationError(); };
    model->selectSource("open-backup");
    settle();
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_FALSE(state().isLoading);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
}

TEST_F(AppModelSources, listAnswerOfTheOldSourceDoesNotFillTheNewList) {
    startedModel();
    const PreparedFake local = lastPrepared();
    model->loadConversations(); // Asked of the old source; its answer will come last.
    model->selectSource("open-backup");
    background->perform(1);
    mainThread->turn();
    background->perform(1);
    mainThread->turn();
    EXPECT_EQ(titles(), (std::vector<std::string>{"Grace", "Rosalind"}));
    local.store->answer = [](const std::string&, std::stop_token) {
        return std::vector{conversation("9", "Stale")};
    };
    settle();
    EXPECT_EQ(titles(), (std::vector<std::string>{"Grace", "Rosalind"}));
    EXPECT_FALSE(state().isLoading);
}

TEST_F(AppModelSources, listAnswerOfTheOldSourceUnderWayDoesNotEndTheLoading) {
    startedModel();
    model->loadConversations();
    model->selectSource("open-backup");
    background->perform(1); // Prepared: the answer waits on the main thread…
    background->perform(0); // …and behind it the old list.
    mainThread->turn();
    EXPECT_TRUE(titles().empty());
    EXPECT_TRUE(state().isLoading);
    settle();
    EXPECT_EQ(titles(), (std::vector<std::string>{"Grace", "Rosalind"}));
    EXPECT_FALSE(state().isLoading);
}

TEST_F(AppModelSources, listOfTheOldSourceIsStoppedBeforeItIsClosed) {
    const auto asked = std::make_shared<std::stop_token>();
    const auto wasStopped = std::make_shared<bool>(false);
    provider->onTeardown = [asked, wasStopped](const std::string& id) {
        if (id == "local-mac") *wasStopped = asked->stop_requested();
    };
    startedModel();
    lastPrepared().store->answer = [&](const std::string&, std::stop_token stop) {
        *asked = stop;
        background->perform(); // The new source becomes ready while the old one is at work.
        mainThread->turn();
        return std::vector<ConversationSummary>();
    };
    model->loadConversations();
    model->selectSource("open-backup");
    background->perform();
    EXPECT_TRUE(*wasStopped);
}

TEST_F(AppModelSources, errorOfTheOldSourcesListIsNotShown) {
    startedModel();
    lastPrepared().store->answer = [](const std::string&,
                                      std::stop_token) -> std::vector<ConversationSummary> {
        throw SpokenError("Old trouble.");
    };
    model->loadConversations();
    model->selectSource("open-backup");
    background->perform(1);
    background->perform(0);
    settle();
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_EQ(titles(), (std::vector<std::string>{"Grace", "Rosalind"}));
}

TEST_F(AppModelSources, loadingLastsAsLongAsThePreparation) {
    startedModel();
    model->selectSource("open-backup");
    model->loadConversations();
    background->perform(1); // The list of the source still in use.
    mainThread->turn();
    EXPECT_TRUE(state().isLoading);
}

TEST_F(AppModelSources, switchInMidSearchSearchesTheNewSource) {
    startedModel();
    model->setSearchText("Rosa");
    model->selectSource("open-backup");
    settle();
    EXPECT_EQ(titles(), std::vector<std::string>{"Rosalind"});
    mainThread->advance(std::chrono::milliseconds(220));
    settle();
    EXPECT_EQ(titles(), std::vector<std::string>{"Rosalind"});
    EXPECT_FALSE(state().isLoading);
}

TEST_F(AppModelSources, searchHintIsAppliedOnceByTheNextSwitch) {
    startedModel();
    model->setPendingSearchHint("Rosa");
    model->selectSource("open-backup");
    EXPECT_EQ(state().searchText, "");
    settle();
    EXPECT_EQ(state().searchText, "Rosa");
    EXPECT_EQ(titles(), std::vector<std::string>{"Rosalind"});
    model->setSearchText("");
    model->selectSource("local-mac");
    settle();
    EXPECT_EQ(state().searchText, "");
}

TEST_F(AppModelSources, encryptedBackupAsksForItsPassword) {
    startedModel();
    bool done = false;
    model->selectSource("locked-backup", [&] { done = true; });
    EXPECT_TRUE(done);
    EXPECT_EQ(state().pendingPasswordSource, provider->sources[2]);
    EXPECT_EQ(background->waiting(), 0U);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
}

TEST_F(AppModelSources, passwordWithoutAPromptIsDropped) {
    startedModel();
    bool done = false;
    model->submitBackupPassword(SecretText("secret"), [&] { done = true; });
    EXPECT_TRUE(done);
    EXPECT_EQ(background->waiting(), 0U);
}

TEST_F(AppModelSources, rightPasswordOpensTheBackup) {
    modelAtPasswordPrompt();
    bool done = false;
    model->submitBackupPassword(SecretText("secret"), [&] { done = true; });
    EXPECT_TRUE(state().pendingPasswordSource.has_value());
    settle();
    EXPECT_TRUE(done);
    EXPECT_EQ(lastPrepared().password, "secret");
    EXPECT_EQ(state().selectedSourceID, "locked-backup");
    EXPECT_EQ(state().pendingPasswordSource, std::nullopt);
    EXPECT_EQ(titles(), std::vector<std::string>{"Emmy"});
}

TEST_F(AppModelSources, wrongPasswordClosesThePromptAndTells) {
    modelAtPasswordPrompt();
    const PreparedFake local = lastPrepared();
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) {
        throw SpokenError("Wrong password.");
    };
    model->submitBackupPassword(SecretText("guess"));
    settle();
    EXPECT_EQ(state().pendingPasswordSource, std::nullopt);
    EXPECT_EQ(state().errorMessage, "Wrong password.");
    EXPECT_EQ(state().store, local.store);
    EXPECT_EQ(*local.teardowns, 0);
    EXPECT_FALSE(state().isLoading);
}

TEST_F(AppModelSources, failureOfAChoiceLeavesThePromptOfAnother) {
    startedModel();
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) {
        throw SpokenError("Backup is damaged.");
    };
    model->selectSource("open-backup");
    model->selectSource("locked-backup");
    settle();
    EXPECT_TRUE(state().pendingPasswordSource.has_value());
}

TEST_F(AppModelSources, closedPromptWithoutAnAnswerPreparesNothing) {
    modelAtPasswordPrompt();
    model->cancelBackupPassword();
    EXPECT_EQ(state().pendingPasswordSource, std::nullopt);
    EXPECT_EQ(background->waiting(), 0U);
    EXPECT_FALSE(state().isLoading);
}

TEST_F(AppModelSources, closedPromptStopsItsPreparation) {
    modelAtPasswordPrompt();
    provider->beforePrepared = [&](const auto&, const auto&, std::stop_token stop) {
        model->cancelBackupPassword(); // While the preparation runs.
        throwIfCancelled(stop);
    };
    bool done = false;
    model->submitBackupPassword(SecretText("secret"), [&] { done = true; });
    settle();
    EXPECT_TRUE(done);
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
    EXPECT_EQ(state().pendingPasswordSource, std::nullopt);
    EXPECT_FALSE(state().isLoading);
}

TEST_F(AppModelSources, sourceReadyAfterThePromptWasClosedIsClosed) {
    modelAtPasswordPrompt();
    model->submitBackupPassword(SecretText("secret"));
    background->perform();
    model->cancelBackupPassword(); // The open source is on its way to the main thread.
    const PreparedFake late = lastPrepared();
    settle();
    EXPECT_EQ(*late.teardowns, 1);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
    EXPECT_NE(state().store, late.store);
}

TEST_F(AppModelSources, abandonedSourceIsClosedWhenItsRunIsOver) {
    modelAtPasswordPrompt();
    int teardownsAtTheEnd = 0;
    model->submitBackupPassword(SecretText("secret"), [&] { teardownsAtTheEnd = *lastPrepared().teardowns; });
    background->perform();
    model->cancelBackupPassword();
    settle();
    EXPECT_EQ(teardownsAtTheEnd, 1);
}

TEST_F(AppModelSources, sourceReadyInTheBackgroundAfterThePromptWasClosedIsClosed) {
    modelAtPasswordPrompt();
    provider->onPrepared = [&](PreparedFake&) { model->cancelBackupPassword(); };
    model->submitBackupPassword(SecretText("secret"));
    settle();
    EXPECT_EQ(lastPrepared().sourceID, "locked-backup");
    EXPECT_EQ(*lastPrepared().teardowns, 1);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
}

TEST_F(AppModelSources, promptClosedInMidPreparationAllowsAnotherSourceAtOnce) {
    modelAtPasswordPrompt();
    model->submitBackupPassword(SecretText("secret"));
    background->perform();
    model->cancelBackupPassword();
    model->selectSource("open-backup");
    settle();
    EXPECT_EQ(state().selectedSourceID, "open-backup");
    EXPECT_EQ(titles(), (std::vector<std::string>{"Grace", "Rosalind"}));
    for (const auto& each : provider->prepared())
        EXPECT_EQ(*each.teardowns, each.sourceID == "open-backup" ? 0 : 1);
}

TEST_F(AppModelSources, lateEndOfAnAbandonedPromptLeavesTheNewPromptOpen) {
    modelAtPasswordPrompt();
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) {
        throw SpokenError("Wrong password.");
    };
    model->submitBackupPassword(SecretText("guess"));
    background->perform();
    model->cancelBackupPassword();
    model->selectSource("locked-backup");
    settle();
    EXPECT_TRUE(state().pendingPasswordSource.has_value());
    EXPECT_EQ(state().errorMessage, std::nullopt);
}

TEST_F(AppModelSources, closedPromptLeavesThePreparationOfAChoiceAlone) {
    startedModel();
    model->selectSource("open-backup");
    model->selectSource("locked-backup");
    model->cancelBackupPassword();
    settle();
    EXPECT_EQ(state().selectedSourceID, "open-backup");
}

TEST_F(AppModelSources, passwordDuringAnotherPreparationIsDropped) {
    startedModel();
    model->selectSource("open-backup");
    model->selectSource("locked-backup");
    model->submitBackupPassword(SecretText("secret"));
    settle();
    EXPECT_EQ(state().selectedSourceID, "open-backup");
    EXPECT_EQ(provider->preparations(), 2);
}

TEST_F(AppModelSources, readyTeardownRunsWhenASourceTakesItsPlace) {
    int teardowns = 0;
    makeModel({nullptr, nullptr, [&] { ++teardowns; }});
    model->start();
    settle();
    EXPECT_EQ(teardowns, 1);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
}

} // namespace
} // namespace quillbook::test
