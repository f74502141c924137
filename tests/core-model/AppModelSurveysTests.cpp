#include "core/records/Cancellation.h"
#include "tests/support/ModelHarness.h"

#include <algorithm>
#include <functional>
#include <string>

namespace quillbook::test {
namespace {

using Status = CacheRecoveryStatus;

std::optional<Status> status(decltype(Status::state) state) {
    return Status{std::move(state)};
}

/// The first conversation has 3 attachments here and 2 missing, the second 1 and 1.
class AppModelSurveys : public ModelHarness {
protected:
    AppModelSurveys() {
        provider->onPrepared = [](PreparedFake& fake) { fill(*fake.store); };
    }

    static void fill(FakeStore& store) {
        store.survey = [](const SourceID& id, std::stop_token) {
            return id.rawValue == "1" ? first : second;
        };
        store.missing = [](const SourceID& id, std::stop_token) {
            return id.rawValue == "1" ? std::vector{missingAttachment(1), missingAttachment(2)}
                                      : std::vector{missingAttachment(3)};
        };
    }
    void selectedModel() {
        startedModel();
        model->setSelectedConversationID(SourceID{"1"});
        announcements.clear();
    }
    /// The first conversation, with so many of a storage refresh's background works done.
    void refreshingModel(int works) {
        selectedModel();
        model->refreshAttachmentStorage([this] { ++done; });
        for (int past = 0; past < works; ++past) {
            background->perform();
            mainThread->turn();
        }
    }
    FakeStore& store() const { return *lastPrepared().store; }

    static constexpr AttachmentStorageSurvey first{3, 2};
    static constexpr AttachmentStorageSurvey second{1, 1};
    int done = 0;
};

TEST_F(AppModelSurveys, setupCountsAndSearchesTheCaches) {
    modelAtExportSetup();
    EXPECT_EQ(state().attachmentStorage, first);
    EXPECT_EQ(state().cacheRecovery, status(Status::NothingRecoverable{2}));
    EXPECT_EQ(store().surveys(), std::vector{SourceID{"1"}});
    EXPECT_EQ(store().missingQuestions(), std::vector{SourceID{"1"}});
}

TEST_F(AppModelSurveys, refreshClearsWhatWasKnownAtOnce) {
    modelAtExportSetup();
    model->refreshAttachmentStorage();
    EXPECT_EQ(state().attachmentStorage, std::nullopt);
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
    EXPECT_EQ(announcements,
              (std::vector{AppModelProperty::attachmentStorage, AppModelProperty::cacheRecovery}));
}

TEST_F(AppModelSurveys, numbersStandBeforeTheCachesAreSearched) {
    refreshingModel(1);
    EXPECT_EQ(state().attachmentStorage, first);
    EXPECT_EQ(state().cacheRecovery, status(Status::Surveying()));
    EXPECT_EQ(announcements,
              (std::vector{AppModelProperty::attachmentStorage, AppModelProperty::cacheRecovery}));
}

TEST_F(AppModelSurveys, refreshIsOverWithItsCacheSurvey) {
    refreshingModel(2);
    EXPECT_EQ(done, 0);
    settle();
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelSurveys, refreshWithoutASelectionStops) {
    startedModel();
    model->refreshAttachmentStorage([this] { ++done; });
    EXPECT_EQ(background->waiting(), 0U);
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelSurveys, surveysWithoutAStoreStop) {
    makeModel();
    model->setSelectedConversationID(SourceID{"1"});
    model->refreshAttachmentStorage([this] { ++done; });
    model->surveyCaches([this] { ++done; });
    model->recoverFromCaches(recoveryReport({1}), [this] { ++done; });
    EXPECT_EQ(background->waiting(), 0U);
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
    EXPECT_EQ(done, 3);
}

TEST_F(AppModelSurveys, cacheSurveyWithoutASelectionStops) {
    startedModel();
    model->surveyCaches([this] { ++done; });
    EXPECT_EQ(background->waiting(), 0U);
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelSurveys, readyStoreIsCountedButItsCachesAreUnknown) {
    const auto ready = std::make_shared<FakeStore>(std::vector{conversation("1", "Hedy")});
    fill(*ready);
    makeModel({ready, std::make_shared<FakeExporter>(), [] {}});
    model->setSelectedConversationID(SourceID{"1"});
    model->refreshAttachmentStorage([this] { ++done; });
    settle();
    EXPECT_EQ(state().attachmentStorage, first);
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelSurveys, deviceBackupIsCountedAndNeverShowsTheRecovery) {
    startedModel();
    model->selectSource("open-backup");
    settle();
    model->setSelectedConversationID(SourceID{"b1"});
    announcements.clear();
    model->continueToExportSetup();
    model->surveyCaches([this] { ++done; });
    model->recoverFromCaches(recoveryReport({1}), [this] { ++done; });
    settle();
    EXPECT_EQ(state().attachmentStorage, second);
    EXPECT_EQ(announced(AppModelProperty::cacheRecovery), 0);
    EXPECT_TRUE(caches->searches().empty());
    EXPECT_TRUE(caches->recoveries().empty());
    EXPECT_EQ(done, 2);
}

struct FailureCase {
    const char* name;
    std::function<void()> fail;
    std::optional<Status> shown; ///< By a survey of the caches that ends this way.
};

class FailedSurvey : public AppModelSurveys, public testing::WithParamInterface<FailureCase> {};

TEST_P(FailedSurvey, ofTheStorageSaysNothing) {
    selectedModel();
    store().survey = [](const SourceID&, std::stop_token) {
        GetParam().fail();
        return AttachmentStorageSurvey();
    };
    model->refreshAttachmentStorage([this] { ++done; });
    settle();
    EXPECT_TRUE(announcements.empty());
    EXPECT_TRUE(store().missingQuestions().empty());
    EXPECT_EQ(done, 1);
}

TEST_P(FailedSurvey, ofTheMissingAttachmentsIsTold) {
    selectedModel();
    store().missing = [](const SourceID&, std::stop_token) {
        GetParam().fail();
        return std::vector<MissingAttachmentRecord>();
    };
    model->surveyCaches([this] { ++done; });
    settle();
    EXPECT_EQ(state().cacheRecovery, GetParam().shown);
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_EQ(done, 1);
}

TEST_P(FailedSurvey, ofTheCachesIsTold) {
    selectedModel();
    caches->onSearch = [] {
        GetParam().fail();
        return RecoveryReport();
    };
    model->surveyCaches([this] { ++done; });
    settle();
    EXPECT_EQ(state().cacheRecovery, GetParam().shown);
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_EQ(done, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FailedSurvey,
    testing::Values(FailureCase{"failed", [] { throw SpokenError("The database is locked."); },
                                status(Status::Failed{"The database is locked."})},
                    FailureCase{"cancelled", [] { throw CancellationError(); }, std::nullopt}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(AppModelSurveys, cacheSurveyShowsThatItRuns) {
    selectedModel();
    model->surveyCaches();
    EXPECT_EQ(state().cacheRecovery, status(Status::Surveying()));
    EXPECT_EQ(announcements, std::vector{AppModelProperty::cacheRecovery});
}

TEST_F(AppModelSurveys, nothingMissingSearchesNoCache) {
    selectedModel();
    store().missing = nullptr;
    model->surveyCaches([this] { ++done; });
    settle();
    EXPECT_EQ(state().cacheRecovery, status(Status::NothingMissing()));
    EXPECT_TRUE(caches->searches().empty());
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelSurveys, cachesAreSearchedForWhatIsMissing) {
    selectedModel();
    model->surveyCaches();
    settle();
    ASSERT_EQ(caches->searches().size(), 1U);
    EXPECT_EQ(caches->searches()[0], (std::vector{missingAttachment(1), missingAttachment(2)}));
}

TEST_F(AppModelSurveys, cachesWithoutACopyTellTheNumberMissing) {
    selectedModel();
    caches->report.unmatchedCount = 2;
    model->surveyCaches([this] { ++done; });
    settle();
    EXPECT_EQ(state().cacheRecovery, status(Status::NothingRecoverable{2}));
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelSurveys, candidatesAreReported) {
    selectedModel();
    caches->report = recoveryReport({2});
    caches->report.unmatchedCount = 1;
    model->surveyCaches([this] { ++done; });
    settle();
    EXPECT_EQ(state().cacheRecovery, status(caches->report));
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelSurveys, newCacheSurveyReplacesTheOne) {
    selectedModel();
    int asked = 0;
    caches->onSearch = [&] { return recoveryReport({++asked}); };
    model->surveyCaches([this] { ++done; });
    background->perform();
    mainThread->turn();
    background->perform(); // Its report is under way.
    model->surveyCaches([this] { ++done; });
    mainThread->turn();
    EXPECT_EQ(state().cacheRecovery, status(Status::Surveying()));
    settle();
    EXPECT_EQ(state().cacheRecovery, status(recoveryReport({2})));
    EXPECT_EQ(done, 2);
}

TEST_F(AppModelSurveys, newRefreshReplacesTheOne) {
    selectedModel();
    int asked = 0;
    store().survey = [&](const SourceID&, std::stop_token) { return AttachmentStorageSurvey{++asked, 0}; };
    model->refreshAttachmentStorage([this] { ++done; });
    background->perform();
    model->refreshAttachmentStorage([this] { ++done; });
    mainThread->turn();
    EXPECT_EQ(state().attachmentStorage, std::nullopt);
    settle();
    EXPECT_EQ(state().attachmentStorage, (AttachmentStorageSurvey{2, 0}));
    EXPECT_EQ(done, 2);
}

TEST_F(AppModelSurveys, refreshStopsTheCacheSurvey) {
    refreshingModel(2);
    model->refreshAttachmentStorage();
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
    background->perform();
    EXPECT_TRUE(caches->searches().empty()) << "cancelled before it began";
    EXPECT_EQ(done, 0);
    mainThread->turn();
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
    EXPECT_EQ(done, 1);
}

/// How many of a refresh's background works are done: 0 the numbers are asked for, 1 the missing attachments,
/// 2 the caches.
class DuringARefresh : public AppModelSurveys, public testing::WithParamInterface<int> {
protected:
    /// The next work is done, and its answer waits for the main thread.
    void refreshWithTheAnswerUnderWay() {
        caches->report = recoveryReport({1});
        refreshingModel(GetParam());
        background->perform();
    }
    void expectNothingKnown() {
        EXPECT_EQ(state().attachmentStorage, std::nullopt);
        EXPECT_EQ(state().cacheRecovery, std::nullopt);
    }
};

TEST_P(DuringARefresh, answerAfterAnotherSelectionIsDropped) {
    refreshWithTheAnswerUnderWay();
    model->setSelectedConversationID(SourceID{"2"});
    expectNothingKnown();
    settle();
    expectNothingKnown();
    EXPECT_EQ(done, 1);
}

TEST_P(DuringARefresh, workNotBegunAtAnotherSelectionIsDropped) {
    refreshingModel(GetParam());
    model->setSelectedConversationID(SourceID{"2"});
    settle();
    expectNothingKnown();
    EXPECT_TRUE(caches->searches().empty());
    EXPECT_EQ(done, 1);
}

TEST_P(DuringARefresh, answerAfterTheSelectionWentAndCameBackIsDropped) {
    refreshWithTheAnswerUnderWay();
    model->setSelectedConversationID(std::nullopt);
    model->setSelectedConversationID(SourceID{"1"});
    settle();
    expectNothingKnown();
    EXPECT_EQ(done, 1);
}

TEST_P(DuringARefresh, answerAfterTheWayBackToTheListIsDropped) {
    refreshWithTheAnswerUnderWay();
    model->chooseConversation();
    settle();
    expectNothingKnown();
    EXPECT_EQ(done, 1);
}

TEST_P(DuringARefresh, sourceSwitchForgetsWhatWasFoundOutAndItsLateAnswer) {
    caches->report = recoveryReport({1});
    refreshingModel(GetParam());
    model->selectSource("open-backup");
    background->perform(1);
    mainThread->turn(); // The switch; the survey's work still waits.
    model->setSelectedConversationID(SourceID{"1"});
    settle();
    expectNothingKnown();
    EXPECT_EQ(done, 1);
}

TEST_P(DuringARefresh, nextConversationGetsItsOwnAnswers) {
    refreshWithTheAnswerUnderWay();
    model->setSelectedConversationID(SourceID{"2"});
    model->continueToExportSetup();
    settle();
    EXPECT_EQ(state().attachmentStorage, second);
    EXPECT_EQ(caches->searches().back(), std::vector{missingAttachment(3)});
    EXPECT_EQ(done, 1);
}

INSTANTIATE_TEST_SUITE_P(Step, DuringARefresh, testing::Values(0, 1, 2));

TEST_F(AppModelSurveys, selectionChangedByWhoeverHearsOfTheNumbersSearchesNothing) {
    selectedModel();
    model->observe([this](AppModelProperty property) {
        if (property == AppModelProperty::attachmentStorage && state().attachmentStorage)
            model->setSelectedConversationID(SourceID{"2"});
    });
    model->refreshAttachmentStorage([this] { ++done; });
    settle();
    EXPECT_TRUE(store().missingQuestions().empty());
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelSurveys, selectionChangedByWhoeverHearsOfTheCacheSurveyAsksNothing) {
    selectedModel();
    model->observe([this](AppModelProperty property) {
        if (property == AppModelProperty::cacheRecovery) model->setSelectedConversationID(SourceID{"2"});
    });
    model->surveyCaches([this] { ++done; });
    settle();
    EXPECT_TRUE(store().missingQuestions().empty());
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
    EXPECT_EQ(done, 1);
}

/// What an observer may see of the conversation before.
class ForgottenSurveys : public AppModelSurveys {
protected:
    void surveyedModel() {
        priorArchive = [](const auto&, const auto&) { return PriorArchiveSummary(); };
        modelAtExportSetup();
        ASSERT_TRUE(state().priorArchive && state().attachmentStorage && state().cacheRecovery);
        model->observe([this](AppModelProperty property) {
            announcements.push_back(property);
            if (state().priorArchive || state().attachmentStorage || state().cacheRecovery) ++sights;
        });
    }
    static bool isSurvey(AppModelProperty property) {
        return property == AppModelProperty::priorArchive ||
               property == AppModelProperty::attachmentStorage || property == AppModelProperty::cacheRecovery;
    }
    int sights = 0;
};

TEST_F(ForgottenSurveys, areGoneWhenAnotherSelectionIsHeardOf) {
    surveyedModel();
    model->setSelectedConversationID(SourceID{"2"});
    EXPECT_EQ(sights, 0);
    EXPECT_EQ(announcements,
              (std::vector{AppModelProperty::selectedConversationID, AppModelProperty::priorArchive,
                           AppModelProperty::attachmentStorage, AppModelProperty::cacheRecovery}));
}

TEST_F(ForgottenSurveys, areGoneWhenAnotherSourceIsHeardOf) {
    surveyedModel();
    model->selectSource("open-backup");
    background->perform();
    sights = 0; // They stand as long as the old source does.
    announcements.clear();
    mainThread->turn();
    EXPECT_EQ(sights, 0);
    EXPECT_EQ(std::count_if(announcements.begin(), announcements.end(), isSurvey), 3);
}

TEST_F(ForgottenSurveys, standWhereThePreparationOfAnotherSourceFailed) {
    surveyedModel();
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) { throw SpokenError("No."); };
    model->selectSource("open-backup");
    settle();
    EXPECT_EQ(state().attachmentStorage, first);
    EXPECT_EQ(state().cacheRecovery, status(Status::NothingRecoverable{2}));
}

TEST_F(ForgottenSurveys, areGoneAfterANewStart) {
    surveyedModel();
    model->start();
    settle();
    EXPECT_EQ(state().priorArchive, std::nullopt);
    EXPECT_EQ(state().attachmentStorage, std::nullopt);
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
}

} // namespace
} // namespace quillbook::test
