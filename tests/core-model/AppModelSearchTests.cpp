#include "core/records/Cancellation.h"
#include "tests/support/ModelHarness.h"

#include <chrono>

namespace quillbook::test {
namespace {

using namespace std::chrono_literals;

class AppModelSearch : public ModelHarness {
protected:
    /// What the store was asked after the first list.
    std::vector<std::string> searches() const {
        auto all = lastPrepared().store->queries();
        all.erase(all.begin());
        return all;
    }
    /// Types and waits until the question is in the background.
    void ask(const std::string& text) {
        model->setSearchText(text);
        mainThread->advance(220ms);
    }
};

TEST_F(AppModelSearch, waitsForTheDelayAndThenAsks) {
    startedModel();
    model->setSearchText("Kath");
    mainThread->advance(219ms);
    EXPECT_EQ(background->waiting(), 0U);
    mainThread->advance(1ms);
    settle();
    EXPECT_EQ(searches(), std::vector<std::string>{"Kath"});
    EXPECT_EQ(titles(), std::vector<std::string>{"Katherine"});
}

TEST_F(AppModelSearch, fastTypingAsksOnceForTheLastText) {
    startedModel();
    model->setSearchText("a");
    mainThread->advance(200ms);
    model->setSearchText("ab");
    mainThread->advance(219ms);
    EXPECT_EQ(background->waiting(), 0U);
    mainThread->advance(1s);
    settle();
    EXPECT_EQ(searches(), std::vector<std::string>{"ab"});
}

TEST_F(AppModelSearch, slowTypingAsksForEachText) {
    startedModel();
    ask("a");
    settle();
    ask("ab");
    settle();
    EXPECT_EQ(searches(), (std::vector<std::string>{"a", "ab"}));
}

TEST_F(AppModelSearch, answerForAnEarlierTextIsDroppedAndLoadingGoesOn) {
    startedModel();
    ask("a");
    background->perform(); // The answer for "a" is under way.
    model->setSearchText("ab");
    mainThread->turn();
    EXPECT_EQ(titles(), (std::vector<std::string>{"Grace", "Katherine"})) << "still the first list";
    EXPECT_TRUE(state().isLoading);
    mainThread->advance(220ms);
    EXPECT_TRUE(state().isLoading);
    settle();
    EXPECT_FALSE(state().isLoading);
    EXPECT_TRUE(titles().empty());
}

TEST_F(AppModelSearch, answersInTheWrongOrderLeaveTheLaterOne) {
    startedModel();
    lastPrepared().store->answer = [](const std::string& query, std::stop_token) {
        return std::vector{conversation(query, "for " + query)};
    };
    ask("a");
    ask("ab");
    background->perform(1);
    background->perform(0);
    mainThread->turn();
    EXPECT_EQ(titles(), std::vector<std::string>{"for ab"});
    EXPECT_FALSE(state().isLoading);
}

TEST_F(AppModelSearch, errorForAnEarlierTextIsDropped) {
    startedModel();
    lastPrepared().store->answer = [](const std::string& query,
                                      std::stop_token) -> std::vector<ConversationSummary> {
        if (query == "a") throw SpokenError("Trouble with a.");
        return {};
    };
    ask("a");
    background->perform();
    model->setSearchText("ab");
    mainThread->turn();
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_TRUE(state().isLoading);
}

TEST_F(AppModelSearch, changedTextStopsTheQuestionUnderWay) {
    startedModel();
    bool wasStopped = false;
    lastPrepared().store->answer = [&](const std::string&,
                                       std::stop_token stop) -> std::vector<ConversationSummary> {
        model->setSearchText("ab"); // While the store is at work.
        wasStopped = stop.stop_requested();
        throwIfCancelled(stop);
        return {};
    };
    ask("a");
    background->perform();
    mainThread->turn();
    EXPECT_TRUE(wasStopped);
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_TRUE(state().isLoading);
}

TEST_F(AppModelSearch, textThatGoesAndComesBackIsAskedForAgain) {
    startedModel();
    ask("Kath");
    model->setSearchText("Kathe");
    model->setSearchText("Kath");
    settle(); // The first question was stopped with the change.
    EXPECT_TRUE(state().isLoading);
    mainThread->advance(220ms);
    settle();
    EXPECT_EQ(titles(), std::vector<std::string>{"Katherine"});
    EXPECT_FALSE(state().isLoading);
}

TEST_F(AppModelSearch, interruptedWaitAsksNothing) {
    startedModel();
    model->setSearchText("a");
    model->setSearchText("ab");
    mainThread->turn(); // Wakes the first wait, which was stopped.
    EXPECT_EQ(mainThread->delayed(), 1U);
    EXPECT_EQ(background->waiting(), 0U);
}

TEST_F(AppModelSearch, waitThatWasInterruptedAsksNothingThoughItsTextCameBack) {
    startedModel();
    model->setSearchText("a");
    model->setSearchText("ab");
    model->setSearchText("a");
    mainThread->turn();
    EXPECT_EQ(background->waiting(), 0U);
    mainThread->advance(220ms);
    settle();
    EXPECT_EQ(searches(), std::vector<std::string>{"a"});
}

TEST_F(AppModelSearch, equalTextStartsNothing) {
    startedModel();
    model->setSearchText("");
    EXPECT_EQ(mainThread->delayed(), 0U);
    EXPECT_TRUE(announcements.empty());
}

TEST_F(AppModelSearch, clearedTextAsksWithTheEmptyText) {
    startedModel();
    ask("Kath");
    settle();
    ask("");
    settle();
    EXPECT_EQ(searches(), (std::vector<std::string>{"Kath", ""}));
    EXPECT_EQ(titles(), (std::vector<std::string>{"Grace", "Katherine"}));
}

TEST_F(AppModelSearch, textChangedByTheObserverOfTheTextIsSearched) {
    startedModel();
    model->observe([&](AppModelProperty property) {
        if (property == AppModelProperty::searchText) model->setSearchText("Grace");
    });
    ask("Kath");
    settle();
    EXPECT_EQ(searches(), std::vector<std::string>{"Grace"});
    EXPECT_EQ(titles(), std::vector<std::string>{"Grace"});
}

TEST_F(AppModelSearch, textChangedByTheObserverOfTheListKeepsLoading) {
    startedModel();
    model->observe([&](AppModelProperty property) {
        if (property == AppModelProperty::conversations) model->setSearchText("Grace");
    });
    ask("Kath");
    settle();
    EXPECT_TRUE(state().isLoading);
    mainThread->advance(220ms);
    settle();
    EXPECT_FALSE(state().isLoading);
    EXPECT_EQ(titles(), std::vector<std::string>{"Grace"});
}

TEST_F(AppModelSearch, failedListIsToldAndLeavesTheListAsItWas) {
    startedModel();
    lastPrepared().store->answer = [](const std::string&,
                                      std::stop_token) -> std::vector<ConversationSummary> {
        throw SpokenError("The database is locked.");
    };
    bool done = false;
    model->loadConversations([&] { done = true; });
    settle();
    EXPECT_TRUE(done);
    EXPECT_EQ(state().errorMessage, "The database is locked.");
    EXPECT_EQ(titles(), (std::vector<std::string>{"Grace", "Katherine"}));
    EXPECT_FALSE(state().isLoading);
}

TEST_F(AppModelSearch, nextListClearsTheMessage) {
    startedModel();
    lastPrepared().store->answer = [](const std::string&,
                                      std::stop_token) -> std::vector<ConversationSummary> {
        throw SpokenError("The database is locked.");
    };
    model->loadConversations();
    settle();
    model->loadConversations();
    EXPECT_EQ(state().errorMessage, std::nullopt);
}

TEST_F(AppModelSearch, cancelledListShowsNothingAndEndsTheLoading) {
    startedModel();
    lastPrepared().store->answer = [](const std::string&,
                                      std::stop_token) -> std::vector<ConversationSummary> {
        throw CancellationError();
    };
    model->loadConversations();
    settle();
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_FALSE(state().isLoading);
}

TEST_F(AppModelSearch, olderOfTwoEqualQuestionsDoesNotReplaceTheNewerAnswer) {
    startedModel();
    int asked = 0;
    lastPrepared().store->answer = [&](const std::string&, std::stop_token) {
        return std::vector{conversation("x", ++asked == 1 ? "newer" : "older")};
    };
    int done = 0;
    model->loadConversations([&] { ++done; });
    model->loadConversations([&] { ++done; });
    background->perform(1);
    settle();
    EXPECT_EQ(titles(), std::vector<std::string>{"newer"});
    EXPECT_EQ(done, 2);
    EXPECT_FALSE(state().isLoading);
}

TEST_F(AppModelSearch, listWithoutAStoreStops) {
    makeModel();
    bool done = false;
    model->loadConversations([&] { done = true; });
    EXPECT_TRUE(done);
    EXPECT_FALSE(state().isLoading);
    EXPECT_EQ(background->waiting(), 0U);
}

TEST_F(AppModelSearch, searchWithoutAStoreStops) {
    makeModel();
    ask("a");
    EXPECT_EQ(background->waiting(), 0U);
    EXPECT_EQ(mainThread->delayed(), 0U);
}

TEST_F(AppModelSearch, equalListIsNotAnnounced) {
    startedModel();
    model->loadConversations();
    settle();
    EXPECT_EQ(announced(AppModelProperty::conversations), 0);
}

TEST_F(AppModelSearch, selectedConversationIsTheOneOfTheList) {
    startedModel();
    model->setSelectedConversationID(SourceID{"2"});
    ASSERT_NE(model->selectedConversation(), nullptr);
    EXPECT_EQ(model->selectedConversation()->title, "Katherine");
}

TEST_F(AppModelSearch, selectionThatWasFilteredAwayKeepsOnlyItsID) {
    startedModel();
    model->setSelectedConversationID(SourceID{"1"});
    ask("Kath");
    settle();
    EXPECT_EQ(model->selectedConversation(), nullptr);
    EXPECT_EQ(state().selectedConversationID, SourceID{"1"});
    model->continueToExportSetup();
    EXPECT_EQ(state().screen, AppScreen::chooseConversation);
}

TEST_F(AppModelSearch, backToTheListClearsTheChoiceAndLoadsAnew) {
    exportingModel();
    settle();
    ASSERT_TRUE(state().result.has_value());
    model->chooseConversation();
    EXPECT_EQ(state().screen, AppScreen::chooseConversation);
    EXPECT_EQ(state().result, std::nullopt);
    EXPECT_EQ(state().selectedConversationID, std::nullopt);
    EXPECT_EQ(state().priorArchive, std::nullopt);
    EXPECT_TRUE(state().isLoading);
    settle();
    EXPECT_EQ(searches(), std::vector<std::string>{""});
    EXPECT_EQ(provider->preparations(), 1);
}

TEST_F(AppModelSearch, backToTheListWithoutAccessStarts) {
    checker->status = {MessagesAccessStatus::Kind::denied, {}};
    startedModel();
    checker->status = {MessagesAccessStatus::Kind::granted, {}};
    model->chooseConversation();
    EXPECT_EQ(state().screen, AppScreen::access);
    settle();
    EXPECT_EQ(state().screen, AppScreen::chooseConversation);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
}

TEST_F(AppModelSearch, backToTheListWithoutAStoreStarts) {
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) {
        throw SpokenError("Not now.");
    };
    startedModel();
    ASSERT_EQ(state().store, nullptr);
    provider->beforePrepared = nullptr;
    model->chooseConversation();
    settle();
    EXPECT_EQ(checker->checks, 2);
    EXPECT_EQ(titles(), (std::vector<std::string>{"Grace", "Katherine"}));
}

} // namespace
} // namespace quillbook::test
