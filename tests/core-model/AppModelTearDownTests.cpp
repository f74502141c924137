#include "core/records/Cancellation.h"
#include "tests/support/ModelHarness.h"

#include <chrono>
#include <functional>
#include <utility>

namespace quillbook::test {
namespace {

using namespace std::chrono_literals;

class AppModelTearDown : public ModelHarness {
protected:
    void expectEachSourceClosedOnce() const {
        for (const auto& each : provider->prepared())
            EXPECT_EQ(*each.teardowns, 1) << each.sourceID;
    }
    /// Runs the background's works up to the given step of a start: 0 the check, 1 the sources, 2 the
    /// preparation, 3 the list.
    void startUpTo(int step) {
        makeModel();
        model->start([this] { ++done; });
        for (int past = 0; past < step; ++past) {
            background->perform();
            mainThread->turn();
        }
    }
    int done = 0;
};

TEST_F(AppModelTearDown, closesTheSourceAtOnceAndOnce) {
    startedModel();
    model->tearDown();
    EXPECT_EQ(*lastPrepared().teardowns, 1);
    model->tearDown();
    model.reset();
    EXPECT_EQ(*lastPrepared().teardowns, 1);
}

TEST_F(AppModelTearDown, withoutASourceDoesNothing) {
    makeModel();
    model->tearDown();
    EXPECT_TRUE(announcements.empty());
}

TEST_F(AppModelTearDown, closesAReadySource) {
    int teardowns = 0;
    makeModel({std::make_shared<FakeStore>(), std::make_shared<FakeExporter>(), [&] { ++teardowns; }});
    model->tearDown();
    EXPECT_EQ(teardowns, 1);
}

TEST_F(AppModelTearDown, teardownThatThrowsEndsThere) {
    makeModel({std::make_shared<FakeStore>(), std::make_shared<FakeExporter>(),
               [] { throw SpokenError("Busy."); }});
    EXPECT_NO_THROW(model->tearDown());
    EXPECT_EQ(state().errorMessage, std::nullopt);
}

TEST_F(AppModelTearDown, modelThatEndsWithoutItClosesItsSource) {
    startedModel();
    model.reset();
    expectEachSourceClosedOnce();
}

struct StartStep {
    const char* name;
    int past; ///< How many of the start's background works are done before.
};

class DuringStart : public AppModelTearDown, public testing::WithParamInterface<StartStep> {};

TEST_P(DuringStart, tearDownWithTheWorkNotBegun) {
    startUpTo(GetParam().past);
    model->tearDown();
    announcements.clear();
    settle();
    EXPECT_TRUE(announcements.empty());
    EXPECT_EQ(done, 1);
    expectEachSourceClosedOnce();
}

TEST_P(DuringStart, tearDownWithTheAnswerUnderWay) {
    startUpTo(GetParam().past);
    background->perform();
    model->tearDown();
    announcements.clear();
    settle();
    EXPECT_TRUE(announcements.empty());
    EXPECT_EQ(done, 1);
    expectEachSourceClosedOnce();
}

TEST_P(DuringStart, modelGoneWithTheWorkNotBegun) {
    startUpTo(GetParam().past);
    model.reset();
    settle();
    EXPECT_EQ(done, 1);
    expectEachSourceClosedOnce();
}

TEST_P(DuringStart, modelGoneWithTheAnswerUnderWay) {
    startUpTo(GetParam().past);
    background->perform();
    model.reset();
    settle();
    EXPECT_EQ(done, 1);
    expectEachSourceClosedOnce();
}

INSTANTIATE_TEST_SUITE_P(Step, DuringStart,
                         testing::Values(StartStep{"accessCheck", 0}, StartStep{"sources", 1},
                                         StartStep{"preparation", 2}, StartStep{"list", 3}),
                         [](const auto& step) { return std::string(step.param.name); });

TEST_F(AppModelTearDown, runningPreparationIsAskedToStop) {
    startUpTo(2);
    bool wasStopped = false;
    provider->beforePrepared = [&](const auto&, const auto&, std::stop_token stop) {
        model->tearDown();
        wasStopped = stop.stop_requested();
        throwIfCancelled(stop);
    };
    settle();
    EXPECT_TRUE(wasStopped);
    EXPECT_EQ(state().errorMessage, std::nullopt);
}

TEST_F(AppModelTearDown, preparationThatIgnoresTheStopIsClosed) {
    startUpTo(2);
    provider->onPrepared = [&](PreparedFake&) { model->tearDown(); };
    background->perform();
    ASSERT_EQ(provider->prepared().size(), 1U);
    EXPECT_EQ(*lastPrepared().teardowns, 1)
        << "closed in the background, whether the main thread goes on or not";
    settle();
    expectEachSourceClosedOnce();
    EXPECT_EQ(state().store, nullptr);
}

TEST_F(AppModelTearDown, preparedSourceIsClosedThoughTheMainThreadNeverTurnsAgain) {
    startUpTo(2);
    background->perform();
    model.reset();
    mainThread = nullptr; // Discards what was posted.
    expectEachSourceClosedOnce();
}

TEST_F(AppModelTearDown, tearDownDuringASwitchClosesBothSources) {
    startedModel();
    model->selectSource("open-backup");
    background->perform();
    model->tearDown();
    settle();
    EXPECT_EQ(provider->prepared().size(), 2U);
    expectEachSourceClosedOnce();
}

TEST_F(AppModelTearDown, waitingSearchAsksNothing) {
    startedModel();
    model->setSearchText("a");
    model->tearDown();
    mainThread->advance(1s);
    EXPECT_EQ(background->waiting(), 0U);
}

TEST_F(AppModelTearDown, modelGoneDuringTheWaitOfASearchEndsQuietly) {
    startedModel();
    model->setSearchText("a");
    model.reset();
    mainThread->advance(1s);
    EXPECT_EQ(background->waiting(), 0U);
}

TEST_F(AppModelTearDown, waitingSearchDoesNotHoldTheModel) {
    startedModel();
    model->setSearchText("a");
    const std::weak_ptr<AppModel> held = model;
    model.reset();
    EXPECT_TRUE(held.expired());
}

TEST_F(AppModelTearDown, exportIsCancelledBeforeTheSourceIsClosed) {
    exportingModel();
    std::vector<bool> stoppedAtTeardown;
    std::stop_token token;
    lastPrepared().exporter->answer = [&](const ProgressCallback&, std::stop_token stop) -> ExportResult {
        token = stop;
        model->tearDown();
        throwIfCancelled(stop);
        return {};
    };
    settle();
    EXPECT_TRUE(token.stop_requested());
    EXPECT_EQ(*lastPrepared().teardowns, 1);
    EXPECT_EQ(state().screen, AppScreen::exportSetup);
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_EQ(presence->calls.back(), "clearBadge");
    EXPECT_FALSE(model->isExporting());
}

TEST_F(AppModelTearDown, albumDeliveredAfterItIsStillTold) {
    exportingModel();
    lastPrepared().exporter->result.archiveURL = "/albums/Grace";
    background->perform();
    model->tearDown();
    settle();
    EXPECT_EQ(state().screen, AppScreen::complete);
    EXPECT_EQ(presence->calls.back(), "finished Grace /albums/Grace");
    expectEachSourceClosedOnce();
}

TEST_F(AppModelTearDown, exportedSourceThatWasSwitchedAwayIsClosedToo) {
    exportingModel();
    model->selectSource("open-backup");
    background->perform(1);
    mainThread->turn();
    model->tearDown();
    expectEachSourceClosedOnce();
    settle();
    expectEachSourceClosedOnce();
}

struct SurveyStep {
    const char* name;
    std::function<void(AppModel&, AppModel::Completion)> begin;
    int past = 0; ///< How many of the operation's background works are done before.
};

class DuringSurvey : public AppModelTearDown, public testing::WithParamInterface<SurveyStep> {
protected:
    void surveyUpToTheStep() {
        startedModel();
        lastPrepared().store->missing = [](const SourceID&, std::stop_token) {
            return std::vector{missingAttachment(1)};
        };
        caches->report = recoveryReport({1});
        priorArchive = [](const auto&, const auto&) { return PriorArchiveSummary(); };
        model->setSelectedConversationID(SourceID{"1"});
        GetParam().begin(*model, [this] { ++done; });
        for (int past = 0; past < GetParam().past; ++past) {
            background->perform();
            mainThread->turn();
        }
        ASSERT_EQ(background->waiting(), 1U);
    }
    void expectTheEnd() {
        announcements.clear();
        settle();
        EXPECT_TRUE(announcements.empty());
        EXPECT_EQ(done, 1);
        expectEachSourceClosedOnce();
    }
};

TEST_P(DuringSurvey, tearDownWithTheWorkNotBegun) {
    surveyUpToTheStep();
    const auto before = caches->searches().size() + caches->recoveries().size() +
                        priorArchiveQuestions.size() + lastPrepared().store->surveys().size() +
                        lastPrepared().store->missingQuestions().size();
    model->tearDown();
    expectTheEnd();
    const auto after = caches->searches().size() + caches->recoveries().size() +
                       priorArchiveQuestions.size() + lastPrepared().store->surveys().size() +
                       lastPrepared().store->missingQuestions().size();
    EXPECT_EQ(after, before);
}

TEST_P(DuringSurvey, tearDownWithTheAnswerUnderWay) {
    surveyUpToTheStep();
    background->perform();
    model->tearDown();
    expectTheEnd();
}

TEST_P(DuringSurvey, modelGoneWithTheWorkNotBegun) {
    surveyUpToTheStep();
    const std::weak_ptr<AppModel> held = model;
    model.reset();
    EXPECT_TRUE(held.expired());
    expectTheEnd();
}

TEST_P(DuringSurvey, modelGoneWithTheAnswerUnderWay) {
    surveyUpToTheStep();
    background->perform();
    model.reset();
    expectTheEnd();
}

constexpr auto refreshStorage = [](AppModel& model, AppModel::Completion done) {
    model.refreshAttachmentStorage(std::move(done));
};
INSTANTIATE_TEST_SUITE_P(Step, DuringSurvey,
                         testing::Values(SurveyStep{"priorArchive",
                                                    [](AppModel& model, auto done) {
                                                        model.refreshPriorArchive(std::move(done));
                                                    }},
                                         SurveyStep{"attachmentStorage", refreshStorage},
                                         SurveyStep{"missingAttachments", refreshStorage, 1},
                                         SurveyStep{"searchOfTheCaches", refreshStorage, 2},
                                         SurveyStep{"recovery",
                                                    [](AppModel& model, auto done) {
                                                        model.recoverFromCaches(recoveryReport({1}),
                                                                                std::move(done));
                                                    }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(AppModelTearDown, runningStorageSurveyIsAskedToStop) {
    modelAtExportSetup();
    bool wasStopped = false;
    lastPrepared().store->survey = [&](const SourceID&, std::stop_token stop) {
        model->tearDown();
        wasStopped = stop.stop_requested();
        throwIfCancelled(stop);
        return AttachmentStorageSurvey();
    };
    model->refreshAttachmentStorage();
    settle();
    EXPECT_TRUE(wasStopped);
    EXPECT_EQ(state().attachmentStorage, std::nullopt);
}

TEST_F(AppModelTearDown, runningListOfMissingAttachmentsIsAskedToStop) {
    modelAtExportSetup();
    bool wasStopped = false;
    lastPrepared().store->missing = [&](const SourceID&,
                                        std::stop_token stop) -> std::vector<MissingAttachmentRecord> {
        model->tearDown();
        wasStopped = stop.stop_requested();
        throw CancellationError();
    };
    model->surveyCaches();
    settle();
    EXPECT_TRUE(wasStopped);
    EXPECT_TRUE(caches->searches().empty());
}

TEST_F(AppModelTearDown, runningRecoveryEndsQuietly) {
    modelAtExportSetup();
    caches->onRecover = [this] {
        model->tearDown();
        return RecoveryOutcome{1, 0, std::nullopt, 7};
    };
    model->recoverFromCaches(recoveryReport({1}), [this] { ++done; });
    announcements.clear();
    settle();
    EXPECT_TRUE(announcements.empty());
    EXPECT_EQ(done, 1);
}

TEST_F(AppModelTearDown, nothingBeginsAfterIt) {
    startedModel();
    model->setSelectedConversationID(SourceID{"1"});
    model->tearDown();
    model->start([this] { ++done; });
    model->selectSource("open-backup", [this] { ++done; });
    model->selectSource("locked-backup");
    model->submitBackupPassword(SecretText("secret"), [this] { ++done; });
    model->loadConversations([this] { ++done; });
    model->setSearchText("a");
    model->startExport();
    model->continueToExportSetup();
    model->refreshPriorArchive([this] { ++done; });
    model->refreshAttachmentStorage([this] { ++done; });
    model->surveyCaches([this] { ++done; });
    model->recoverFromCaches(recoveryReport({1}), [this] { ++done; });
    model->lookInDeviceBackup([this] { ++done; });
    model->chooseConversation();
    mainThread->advance(1s);
    EXPECT_EQ(done, 9);
    EXPECT_EQ(background->waiting() + mainThread->posted() + mainThread->delayed(), 0U);
    EXPECT_EQ(provider->preparations(), 1);
}

} // namespace
} // namespace quillbook::test
