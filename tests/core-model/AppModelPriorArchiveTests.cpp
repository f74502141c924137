#include "core/records/Cancellation.h"
#include "tests/support/ModelHarness.h"

#include <cstdint>
#include <limits>
#include <string>

namespace quillbook::test {
namespace {

using Priority = BackgroundRunner::Priority;

PriorArchiveSummary archiveIn(const std::filesystem::path& folder, std::int64_t sourceMessageCount = 0) {
    PriorArchiveSummary summary;
    summary.archiveURL = folder;
    summary.sourceMessageCount = sourceMessageCount;
    return summary;
}

/// An album for each conversation in each folder, named after both.
class AppModelPriorArchive : public ModelHarness {
protected:
    AppModelPriorArchive() {
        priorArchive = [](const SourceID& id, const std::filesystem::path& folder) {
            return archiveIn(folder / id.rawValue);
        };
    }
    void selectedModel() {
        startedModel();
        model->setSelectedConversationID(SourceID{"1"});
        announcements.clear();
    }
    std::string shown() const {
        return state().priorArchive ? state().priorArchive->archiveURL.string() : "none";
    }
    int done = 0;
};

struct CountCase {
    const char* name;
    std::int64_t now;
    std::int64_t seen;
    std::int64_t expected;
};

constexpr auto least = std::numeric_limits<std::int64_t>::min();
constexpr auto most = std::numeric_limits<std::int64_t>::max();

class NewMessagesSincePriorArchive : public AppModelPriorArchive,
                                     public testing::WithParamInterface<CountCase> {};

TEST_P(NewMessagesSincePriorArchive, isTheDifferenceAndNeverNegative) {
    ConversationSummary summary = conversation("1", "Grace");
    summary.messageCount = GetParam().now;
    provider->conversations["local-mac"] = {summary};
    priorArchive = [](const auto&, const auto&) { return archiveIn("/album", GetParam().seen); };
    modelAtExportSetup();
    EXPECT_EQ(model->newMessagesSincePriorArchive(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, NewMessagesSincePriorArchive,
                         testing::Values(CountCase{"more", 10, 7, 3}, CountCase{"asMany", 7, 7, 0},
                                         CountCase{"fewerThanTheAlbumSaw", 5, 9, 0},
                                         CountCase{"largest", most, 0, most},
                                         CountCase{"manifestBelowZero", 5, -2, 7},
                                         CountCase{"manifestFarBelowZero", 5, least, most},
                                         CountCase{"manifestAboveAll", 5, most, 0}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(AppModelPriorArchive, newMessagesAreUnknownWithoutAnAlbum) {
    priorArchive = [](const auto&, const auto&) { return std::nullopt; };
    modelAtExportSetup();
    ASSERT_NE(model->selectedConversation(), nullptr);
    EXPECT_EQ(model->newMessagesSincePriorArchive(), std::nullopt);
}

TEST_F(AppModelPriorArchive, newMessagesAreUnknownWhereTheSelectionWasFilteredAway) {
    modelAtExportSetup();
    model->setSearchText("Kath");
    mainThread->advance(std::chrono::seconds(1));
    settle();
    ASSERT_TRUE(state().priorArchive.has_value());
    EXPECT_EQ(model->newMessagesSincePriorArchive(), std::nullopt);
}

TEST_F(AppModelPriorArchive, setupLooksForTheConversationInTheDestination) {
    modelAtExportSetup();
    const std::pair<SourceID, std::filesystem::path> expected{SourceID{"1"}, "/home/ada/Downloads"};
    EXPECT_EQ(priorArchiveQuestions, std::vector{expected});
    EXPECT_EQ(shown(), "/home/ada/Downloads/1");
}

TEST_F(AppModelPriorArchive, setupLooksForAlbumsFirstAndThenSurveys) {
    selectedModel();
    runner->priorities.clear();
    model->continueToExportSetup();
    EXPECT_EQ(runner->priorities, (std::vector{Priority::utility, Priority::userInitiated}));
}

TEST_F(AppModelPriorArchive, setupWithoutASelectedConversationLooksForNothing) {
    startedModel();
    model->continueToExportSetup();
    settle();
    EXPECT_TRUE(priorArchiveQuestions.empty());
    EXPECT_TRUE(lastPrepared().store->surveys().empty());
}

TEST_F(AppModelPriorArchive, scanNeverRunsOnTheMainThread) {
    selectedModel();
    model->refreshPriorArchive();
    mainThread->turn();
    EXPECT_TRUE(priorArchiveQuestions.empty());
    background->perform();
    EXPECT_EQ(priorArchiveQuestions.size(), 1U);
}

TEST_F(AppModelPriorArchive, answerIsAnnouncedOnce) {
    selectedModel();
    model->refreshPriorArchive([this] { ++done; });
    EXPECT_EQ(done, 0);
    settle();
    EXPECT_EQ(announcements, std::vector{AppModelProperty::priorArchive});
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelPriorArchive, withoutASelectionNothingIsAsked) {
    startedModel();
    model->refreshPriorArchive([this] { ++done; });
    EXPECT_EQ(background->waiting(), 0U);
    EXPECT_EQ(done, 1);
    EXPECT_EQ(shown(), "none");
}

TEST_F(AppModelPriorArchive, albumThatIsGoneIsForgotten) {
    modelAtExportSetup();
    priorArchive = [](const auto&, const auto&) { return std::nullopt; };
    model->refreshPriorArchive();
    settle();
    EXPECT_EQ(shown(), "none");
}

TEST_F(AppModelPriorArchive, newDestinationIsSearchedByTheRefreshBehindIt) {
    modelAtExportSetup();
    model->setDestination("/albums");
    EXPECT_EQ(background->waiting(), 0U);
    model->refreshPriorArchive();
    settle();
    EXPECT_EQ(shown(), "/albums/1");
}

TEST_F(AppModelPriorArchive, newRefreshCancelsTheOldBeforeItBegins) {
    selectedModel();
    model->refreshPriorArchive([this] { ++done; });
    model->setDestination("/albums");
    model->refreshPriorArchive([this] { ++done; });
    settle();
    EXPECT_EQ(priorArchiveQuestions.size(), 1U);
    EXPECT_EQ(shown(), "/albums/1");
    EXPECT_EQ(done, 2);
}

TEST_F(AppModelPriorArchive, answersInTheWrongOrderLeaveTheLaterOne) {
    selectedModel();
    int asked = 0;
    priorArchive = [&](const auto&, const auto&) { return archiveIn(++asked == 1 ? "/first" : "/second"); };
    model->refreshPriorArchive([this] { ++done; });
    background->perform(); // Its answer is under way.
    model->refreshPriorArchive([this] { ++done; });
    background->perform();
    mainThread->turn();
    EXPECT_EQ(shown(), "/second");
    EXPECT_EQ(announced(AppModelProperty::priorArchive), 1);
    EXPECT_EQ(done, 2);
}

TEST_F(AppModelPriorArchive, answerForAnotherFolderIsDropped) {
    selectedModel();
    model->refreshPriorArchive([this] { ++done; });
    background->perform();
    model->setDestination("/albums");
    settle();
    EXPECT_EQ(shown(), "none");
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelPriorArchive, answerForAnotherConversationIsDropped) {
    selectedModel();
    model->refreshPriorArchive([this] { ++done; });
    background->perform();
    model->setSelectedConversationID(SourceID{"2"});
    settle();
    EXPECT_EQ(shown(), "none");
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelPriorArchive, answerFromBeforeASourceSwitchIsDropped) {
    selectedModel();
    model->refreshPriorArchive([this] { ++done; });
    model->selectSource("open-backup");
    background->perform(1);
    mainThread->turn();
    model->setSelectedConversationID(SourceID{"1"}); // The same id may name another conversation there.
    settle();
    EXPECT_EQ(shown(), "none");
    EXPECT_EQ(done, 1);
}

struct FailureCase {
    const char* name;
    std::function<std::optional<PriorArchiveSummary>()> fail;
};

class FailedScan : public AppModelPriorArchive, public testing::WithParamInterface<FailureCase> {};

TEST_P(FailedScan, leavesNoAlbumAndNoWords) {
    modelAtExportSetup();
    priorArchive = [](const auto&, const auto&) { return GetParam().fail(); };
    model->refreshPriorArchive([this] { ++done; });
    settle();
    EXPECT_EQ(shown(), "none");
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_EQ(done, 1);
}

using Found = std::optional<PriorArchiveSummary>;
INSTANTIATE_TEST_SUITE_P(
    Table, FailedScan,
    testing::Values(FailureCase{"failed", []() -> Found { throw SpokenError("Unreadable."); }},
                    FailureCase{"cancelled", []() -> Found { throw CancellationError(); }}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(AppModelPriorArchive, lookDoesNotHoldTheModel) {
    selectedModel();
    model->refreshPriorArchive([this] { ++done; });
    const std::weak_ptr<AppModel> held = model;
    model.reset();
    EXPECT_TRUE(held.expired());
    settle();
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelPriorArchive, backToTheListForgetsTheAlbum) {
    modelAtExportSetup();
    ASSERT_NE(shown(), "none");
    model->chooseConversation();
    EXPECT_EQ(shown(), "none");
    EXPECT_EQ(announced(AppModelProperty::priorArchive), 1);
    settle();
    EXPECT_EQ(shown(), "none");
}

TEST_F(AppModelPriorArchive, equalSelectionForgetsNothing) {
    modelAtExportSetup();
    model->setSelectedConversationID(SourceID{"1"});
    EXPECT_TRUE(announcements.empty());
    EXPECT_EQ(shown(), "/home/ada/Downloads/1");
}

} // namespace
} // namespace quillbook::test
