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

/// Each conversation of this Mac has one attachment, which is missing until a recovery copied it.
class AppModelRecovery : public ModelHarness {
protected:
    AppModelRecovery() {
        provider->onPrepared = [this](PreparedFake& fake) { fill(*fake.store); };
        caches->report = report;
        caches->onRecover = [this] {
            isRecovered = true;
            return outcome;
        };
    }

    void fill(FakeStore& store) {
        store.survey = [this](const SourceID&, std::stop_token) { return isRecovered ? recovered : missing; };
        store.missing = [this](const SourceID&, std::stop_token) {
            return isRecovered ? std::vector<MissingAttachmentRecord>() : std::vector{missingAttachment(1)};
        };
    }
    /// On the export setup, with what the caches hold reported.
    void reportedModel() {
        modelAtExportSetup();
        ASSERT_EQ(state().cacheRecovery, status(report));
        model->observe([this](AppModelProperty property) {
            announcements.push_back(property);
            if (property == AppModelProperty::cacheRecovery) shown.push_back(state().cacheRecovery);
        });
    }
    void recover() {
        model->recoverFromCaches(report, [this] { ++done; });
    }
    /// A recovery whose copies stand, and whose end the model has not heard of.
    void modelAtTheEndOfARecovery() {
        reportedModel();
        recover();
        background->perform();
        ASSERT_TRUE(isRecovered);
    }
    bool wasShown(const std::optional<Status>& wanted) const {
        return std::find(shown.begin(), shown.end(), wanted) != shown.end();
    }

    static constexpr AttachmentStorageSurvey missing{0, 1};
    static constexpr AttachmentStorageSurvey recovered{1, 0};
    const RecoveryReport report = recoveryReport({1});
    const RecoveryOutcome outcome{1, 0, "/home/ada/recovered/recovery-manifest.json", 7};
    bool isRecovered = false;
    std::vector<std::optional<Status>> shown; ///< Each announced value.
    int done = 0;
};

TEST_F(AppModelRecovery, showsThatItRuns) {
    reportedModel();
    recover();
    EXPECT_EQ(state().cacheRecovery, status(Status::Recovering()));
    EXPECT_EQ(announcements, std::vector{AppModelProperty::cacheRecovery});
    EXPECT_EQ(done, 0);
}

TEST_F(AppModelRecovery, copiesTheCandidatesBelowTheRecoveryRoot) {
    reportedModel();
    recover();
    settle();
    const FakeCacheRecovery::Recovery expected{report.candidates, "/home/ada/recovered"};
    EXPECT_EQ(caches->recoveries(), std::vector{expected});
}

TEST_F(AppModelRecovery, takesTheReportOutOfTheStateThatItReplaces) {
    reportedModel();
    model->recoverFromCaches(std::get<RecoveryReport>(state().cacheRecovery->state));
    settle();
    ASSERT_EQ(caches->recoveries().size(), 1U);
    EXPECT_EQ(caches->recoveries()[0].candidates, report.candidates);
}

TEST_F(AppModelRecovery, tellsTheOutcomeAndRefreshesInTheSameStep) {
    modelAtTheEndOfARecovery();
    announcements.clear();
    shown.clear();
    ASSERT_TRUE(mainThread->turnOnce());
    EXPECT_EQ(announcements,
              (std::vector{AppModelProperty::cacheRecovery, AppModelProperty::attachmentStorage,
                           AppModelProperty::cacheRecovery}));
    EXPECT_EQ(shown, (std::vector{status(outcome), std::optional<Status>()}));
    EXPECT_EQ(state().attachmentStorage, std::nullopt);
    EXPECT_EQ(background->waiting(), 1U) << "the new count";
}

TEST_F(AppModelRecovery, endsInAFreshSurvey) {
    modelAtTheEndOfARecovery();
    settle();
    EXPECT_EQ(state().attachmentStorage, recovered);
    EXPECT_EQ(state().cacheRecovery, status(Status::NothingMissing()));
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelRecovery, isOverWithItsRefresh) {
    modelAtTheEndOfARecovery();
    mainThread->turn();
    EXPECT_EQ(done, 0);
    settle();
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelRecovery, partOfTheCopiesIsTheOutcomeToo) {
    reportedModel();
    const RecoveryOutcome part{1, 2, std::nullopt, 7};
    caches->onRecover = [&] { return part; };
    recover();
    settle();
    EXPECT_TRUE(wasShown(status(part)));
    EXPECT_EQ(state().cacheRecovery, status(report)) << "what is still missing";
}

TEST_F(AppModelRecovery, failureIsToldAndRefreshesNothing) {
    reportedModel();
    caches->onRecover = []() -> RecoveryOutcome { throw SpokenError("The disk is full."); };
    recover();
    settle();
    EXPECT_EQ(state().cacheRecovery, status(Status::Failed{"The disk is full."}));
    EXPECT_EQ(state().attachmentStorage, missing);
    EXPECT_EQ(lastPrepared().store->surveys().size(), 1U);
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelRecovery, cancellationIsNotShown) {
    reportedModel();
    caches->onRecover = []() -> RecoveryOutcome { throw CancellationError(); };
    recover();
    settle();
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelRecovery, failureCanBeFollowedByASurvey) {
    reportedModel();
    caches->onRecover = []() -> RecoveryOutcome { throw SpokenError("The disk is full."); };
    recover();
    settle();
    model->surveyCaches();
    settle();
    EXPECT_EQ(state().cacheRecovery, status(report));
}

TEST_F(AppModelRecovery, withoutASelectionCopiesNothing) {
    startedModel();
    recover();
    settle();
    EXPECT_TRUE(caches->recoveries().empty());
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelRecovery, selectionChangedByWhoeverHearsTheOutcomeSurveysThatOne) {
    modelAtTheEndOfARecovery();
    model->observe([this](AppModelProperty) {
        if (state().cacheRecovery == status(outcome)) model->setSelectedConversationID(SourceID{"2"});
    });
    settle();
    EXPECT_EQ(lastPrepared().store->surveys().back(), SourceID{"2"});
    EXPECT_EQ(state().attachmentStorage, recovered);
    EXPECT_EQ(done, 1);
}

/// A recovery that begins while a survey of the caches runs, which has so many of its two works done.
class RecoveryDuringASurvey : public AppModelRecovery, public testing::WithParamInterface<int> {
protected:
    void surveyingModel() {
        reportedModel();
        model->surveyCaches([this] { ++surveysDone; });
        for (int past = 0; past < GetParam(); ++past) {
            background->perform();
            mainThread->turn();
        }
    }
    int surveysDone = 0;
};

TEST_P(RecoveryDuringASurvey, stopsTheSurvey) {
    surveyingModel();
    const std::size_t searches = caches->searches().size();
    recover();
    background->perform(); // What is left of the survey.
    mainThread->turn();
    EXPECT_EQ(state().cacheRecovery, status(Status::Recovering()));
    EXPECT_EQ(caches->searches().size(), searches);
    EXPECT_EQ(surveysDone, 1);
}

TEST_P(RecoveryDuringASurvey, isNotReplacedByTheSurveysAnswer) {
    surveyingModel();
    background->perform(); // Its answer is under way.
    recover();
    mainThread->turn();
    EXPECT_EQ(state().cacheRecovery, status(Status::Recovering()));
    settle();
    EXPECT_TRUE(wasShown(status(outcome)));
    EXPECT_EQ(state().cacheRecovery, status(Status::NothingMissing()));
    EXPECT_EQ(surveysDone, 1);
    EXPECT_EQ(done, 1);
}

INSTANTIATE_TEST_SUITE_P(Step, RecoveryDuringASurvey, testing::Values(0, 1));

/// What the model does while a recovery copies, which cannot be called back.
class DuringARecovery : public AppModelRecovery {
protected:
    /// Does `meanwhile` while the copies are made; their end is heard of afterwards.
    void recoverWith(std::function<void()> meanwhile) {
        reportedModel();
        caches->onRecover = [this, meanwhile = std::move(meanwhile)] {
            meanwhile();
            isRecovered = true;
            return outcome;
        };
        recover();
        background->perform();
    }
};

TEST_F(DuringARecovery, surveyTakesItsPlaceAndItsEndRefreshes) {
    recoverWith([this] {
        model->surveyCaches();
        background->performAll();
        mainThread->turn();
        background->performAll();
        mainThread->turn();
        EXPECT_EQ(state().cacheRecovery, status(report)) << "found before the copies stood";
    });
    mainThread->turn();
    EXPECT_FALSE(wasShown(status(outcome)));
    settle();
    EXPECT_EQ(state().cacheRecovery, status(Status::NothingMissing()));
    EXPECT_EQ(state().attachmentStorage, recovered);
    EXPECT_EQ(done, 1);
}

TEST_F(DuringARecovery, surveyThatStillRunsIsMadeAnew) {
    recoverWith([this] { model->surveyCaches(); });
    settle();
    EXPECT_FALSE(wasShown(status(outcome)));
    EXPECT_EQ(state().cacheRecovery, status(Status::NothingMissing()));
    EXPECT_EQ(state().attachmentStorage, recovered);
    EXPECT_EQ(done, 1);
}

TEST_F(DuringARecovery, refreshTakesItsPlaceAndIsMadeAnewAtItsEnd) {
    recoverWith([this] {
        model->refreshAttachmentStorage();
        settle();
        EXPECT_EQ(state().attachmentStorage, missing) << "counted before the copies stood";
    });
    settle();
    EXPECT_FALSE(wasShown(status(outcome)));
    EXPECT_EQ(state().attachmentStorage, recovered);
    EXPECT_EQ(done, 1);
}

TEST_F(DuringARecovery, conversationOnShowInsteadIsCountedAnewAtItsEnd) {
    recoverWith([this] {
        model->setSelectedConversationID(SourceID{"2"});
        model->continueToExportSetup();
        settle();
        EXPECT_EQ(state().attachmentStorage, missing);
        EXPECT_EQ(state().cacheRecovery, status(report));
    });
    settle();
    EXPECT_FALSE(wasShown(status(outcome))) << "it was another conversation's";
    EXPECT_EQ(lastPrepared().store->surveys().back(), SourceID{"2"});
    EXPECT_EQ(state().attachmentStorage, recovered);
    EXPECT_EQ(done, 1);
}

TEST_F(DuringARecovery, conversationThatIsBackIsCountedAnewAtItsEnd) {
    recoverWith([this] {
        model->setSelectedConversationID(SourceID{"2"});
        model->setSelectedConversationID(SourceID{"1"});
        model->continueToExportSetup();
        settle();
        EXPECT_EQ(state().cacheRecovery, status(report));
    });
    settle();
    EXPECT_EQ(state().attachmentStorage, recovered);
    EXPECT_EQ(state().cacheRecovery, status(Status::NothingMissing()));
}

TEST_F(DuringARecovery, conversationThatNobodyAskedAboutIsNotCounted) {
    recoverWith([this] { model->setSelectedConversationID(SourceID{"2"}); });
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
    mainThread->turn();
    EXPECT_EQ(background->waiting(), 0U);
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
    EXPECT_EQ(done, 1);
}

TEST_F(DuringARecovery, wayBackToTheListShowsNothingOfItsEnd) {
    recoverWith([this] { model->chooseConversation(); });
    settle();
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
    EXPECT_EQ(state().attachmentStorage, std::nullopt);
    EXPECT_FALSE(wasShown(status(outcome)));
    EXPECT_EQ(done, 1);
}

TEST_F(DuringARecovery, switchToABackupKeepsTheRecoveryOut) {
    recoverWith([this] {
        model->selectSource("open-backup");
        settle();
        model->setSelectedConversationID(SourceID{"b1"});
        model->continueToExportSetup();
        settle();
        shown.clear();
    });
    settle();
    EXPECT_EQ(state().attachmentStorage, missing);
    EXPECT_EQ(lastPrepared().store->surveys().size(), 1U) << "the copies are not the backup's";
    EXPECT_TRUE(shown.empty());
    EXPECT_EQ(done, 1);
}

TEST_F(DuringARecovery, libraryThatWasOpenedAnewIsCountedAnewAtItsEnd) {
    recoverWith([this] {
        model->start();
        settle();
        model->setSelectedConversationID(SourceID{"1"});
        model->continueToExportSetup();
        settle();
        EXPECT_EQ(state().attachmentStorage, missing);
    });
    settle();
    EXPECT_EQ(provider->preparations(), 2);
    EXPECT_FALSE(wasShown(status(outcome)));
    EXPECT_EQ(state().attachmentStorage, recovered);
}

TEST_F(DuringARecovery, laterRecoveryIsLeftToShowItsOwnEnd) {
    recoverWith([this] {
        model->setSelectedConversationID(SourceID{"2"});
        model->continueToExportSetup();
        settle();
        recover();
    });
    mainThread->turn(); // The first one's end.
    EXPECT_EQ(state().cacheRecovery, status(Status::Recovering()));
    EXPECT_EQ(done, 1);
    caches->onRecover = nullptr;
    caches->outcome = RecoveryOutcome{5, 0, std::nullopt, 9};
    settle();
    EXPECT_TRUE(wasShown(status(caches->outcome)));
    EXPECT_FALSE(wasShown(status(outcome)));
    EXPECT_EQ(state().attachmentStorage, recovered);
    EXPECT_EQ(done, 2);
}

TEST_F(DuringARecovery, lateFailureIsNotShown) {
    recoverWith([this] {
        model->setSelectedConversationID(SourceID{"2"});
        model->continueToExportSetup();
        settle();
        throw SpokenError("The disk is full.");
    });
    settle();
    EXPECT_EQ(state().cacheRecovery, status(report));
    EXPECT_EQ(done, 1);
}

TEST_F(DuringARecovery, exportGoesOn) {
    recoverWith([this] { model->startExport(); });
    settle();
    EXPECT_EQ(state().screen, AppScreen::complete);
    EXPECT_TRUE(wasShown(status(outcome)));
    EXPECT_EQ(state().attachmentStorage, recovered);
}

TEST_F(DuringARecovery, modelGoneEndsQuietly) {
    recoverWith([this] { model.reset(); });
    mainThread->turn();
    EXPECT_EQ(background->waiting(), 0U);
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelRecovery, thatHasNotBegunIsDroppedWithItsSelection) {
    reportedModel();
    recover();
    model->setSelectedConversationID(SourceID{"2"});
    settle();
    EXPECT_TRUE(caches->recoveries().empty());
    EXPECT_EQ(state().cacheRecovery, std::nullopt);
    EXPECT_EQ(done, 1);
}

} // namespace
} // namespace quillbook::test
