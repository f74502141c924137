#include "tests/support/ModelHarness.h"

#include <chrono>
#include <string>

namespace quillbook::test {
namespace {

using namespace std::chrono_literals;

/// A model that completed an album of Grace, who has an address; the backup lists her under it.
class AppModelLookInBackup : public ModelHarness {
protected:
    AppModelLookInBackup() {
        setGrace({"+15550100", "grace@example.org"});
        provider->conversations["open-backup"] = {conversation("b1", "+15550100"),
                                                  conversation("b2", "Rosalind")};
    }
    void setGrace(std::vector<std::string> addresses) {
        ConversationSummary grace = conversation("1", "Grace");
        grace.participantAddresses = std::move(addresses);
        provider->conversations["local-mac"] = {grace, conversation("2", "Katherine")};
    }
    void completedModel() {
        exportingModel();
        settle();
        ASSERT_EQ(state().screen, AppScreen::complete);
        announcements.clear();
    }
    void look() {
        model->lookInDeviceBackup([this] { ++done; });
    }
    int done = 0;
};

TEST_F(AppModelLookInBackup, withoutABackupDoesNothing) {
    provider->sources = {localMacSource()};
    completedModel();
    look();
    EXPECT_TRUE(announcements.empty());
    EXPECT_EQ(state().screen, AppScreen::complete);
    EXPECT_EQ(state().selectedConversationID, SourceID{"1"});
    EXPECT_EQ(background->waiting(), 0U);
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelLookInBackup, goesToTheListAtOnce) {
    completedModel();
    look();
    EXPECT_EQ(state().screen, AppScreen::chooseConversation);
    EXPECT_EQ(state().result, std::nullopt);
    EXPECT_EQ(state().selectedConversationID, std::nullopt);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
    EXPECT_EQ(state().searchText, "") << "the hint waits for the backup";
    EXPECT_EQ(done, 0);
}

TEST_F(AppModelLookInBackup, forgetsWhatWasFoundOut) {
    completedModel();
    ASSERT_TRUE(state().attachmentStorage && state().cacheRecovery);
    look();
    EXPECT_EQ(state().attachmentStorage, std::nullopt);
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
    settle();
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
}

TEST_F(AppModelLookInBackup, findsTheSamePersonThere) {
    completedModel();
    look();
    settle();
    EXPECT_EQ(state().selectedSourceID, "open-backup");
    EXPECT_EQ(state().searchText, "+15550100");
    EXPECT_EQ(titles(), std::vector<std::string>{"+15550100"});
    EXPECT_EQ(done, 1);
}

struct HintCase {
    const char* name;
    std::vector<std::string> addresses;
    std::string expected;
};

class SearchHint : public AppModelLookInBackup, public testing::WithParamInterface<HintCase> {};

TEST_P(SearchHint, isTheFirstAddressOrElseTheTitle) {
    setGrace(GetParam().addresses);
    completedModel();
    look();
    settle();
    EXPECT_EQ(state().searchText, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, SearchHint,
                         testing::Values(HintCase{"oneAddress", {"+15550100"}, "+15550100"},
                                         HintCase{
                                             "severalAddresses", {"b@example.org", "a"}, "b@example.org"},
                                         HintCase{"noAddress", {}, "Grace"}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(AppModelLookInBackup, withoutASelectedConversationThereIsNoHint) {
    startedModel();
    model->setPendingSearchHint("Rosalind");
    look();
    settle();
    EXPECT_EQ(state().selectedSourceID, "open-backup");
    EXPECT_EQ(state().searchText, "");
}

TEST_F(AppModelLookInBackup, encryptedBackupAsksForItsPasswordAndKeepsTheHintUntilThen) {
    provider->sources = {localMacSource(), backupSource("locked-backup", true)};
    completedModel();
    look();
    EXPECT_EQ(done, 1);
    ASSERT_TRUE(state().pendingPasswordSource.has_value());
    EXPECT_EQ(state().searchText, "");
    model->submitBackupPassword(SecretText("secret"));
    settle();
    EXPECT_EQ(state().selectedSourceID, "locked-backup");
    EXPECT_EQ(state().searchText, "+15550100");
}

TEST_F(AppModelLookInBackup, failedPreparationTellsAndLeavesTheListUnsearched) {
    completedModel();
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) {
        throw SpokenError("The backup is damaged.");
    };
    look();
    settle();
    EXPECT_EQ(state().errorMessage, "The backup is damaged.");
    EXPECT_EQ(state().selectedSourceID, "local-mac");
    EXPECT_EQ(state().searchText, "");
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelLookInBackup, duringAPreparationLeavesItsHintToThatOne) {
    completedModel();
    model->selectSource("open-backup");
    look();
    EXPECT_EQ(done, 1) << "the second preparation is dropped";
    settle();
    EXPECT_EQ(provider->preparations(), 2);
    EXPECT_EQ(state().searchText, "+15550100");
}

TEST_F(AppModelLookInBackup, hintReplacesATextInMidSearch) {
    completedModel();
    model->setSearchText("Gr");
    look();
    settle();
    mainThread->advance(1s);
    settle();
    EXPECT_EQ(state().searchText, "+15550100");
    EXPECT_EQ(titles(), std::vector<std::string>{"+15550100"});
    for (const std::string& each : lastPrepared().store->queries())
        EXPECT_EQ(each, "+15550100");
    EXPECT_FALSE(state().isLoading);
}

} // namespace
} // namespace quillbook::test
