#include "core/records/Cancellation.h"
#include "tests/support/ModelHarness.h"

namespace quillbook::test {
namespace {

class AppModelExport : public ModelHarness {
protected:
    ExportResult album() const {
        ExportResult result;
        result.archiveURL = "/home/ada/Downloads/Grace 2024";
        result.messageCount = 12;
        return result;
    }
    void failWith(std::function<void(std::stop_token)> failure) {
        lastPrepared().exporter->answer = [failure](const ProgressCallback&, std::stop_token stop) {
            failure(stop);
            return ExportResult();
        };
    }
};

TEST_F(AppModelExport, setupNeedsASelectedConversation) {
    startedModel();
    model->continueToExportSetup();
    EXPECT_EQ(state().screen, AppScreen::chooseConversation);
    model->setSelectedConversationID(SourceID{"1"});
    model->continueToExportSetup();
    EXPECT_EQ(state().screen, AppScreen::exportSetup);
}

TEST_F(AppModelExport, startMovesToTheExportingScreen) {
    modelAtExportSetup();
    model->startExport();
    EXPECT_EQ(state().screen, AppScreen::exporting);
    EXPECT_EQ(state().progress, (ExportProgress{ExportStage::preparing, 0, 1, "Preparing"}));
    EXPECT_TRUE(model->isExporting());
    EXPECT_EQ(presence->calls, std::vector<std::string>{"started"});
}

TEST_F(AppModelExport, exporterGetsTheChoicesOfTheStart) {
    modelAtExportSetup();
    model->setOptions({false, true, true});
    model->setDestination("/albums");
    model->startExport();
    model->setDestination("/elsewhere");
    settle();
    const std::vector<FakeExporter::Request> expected{{SourceID{"1"}, "/albums", {false, true, true}}};
    EXPECT_EQ(lastPrepared().exporter->requests(), expected);
}

TEST_F(AppModelExport, startClearsTheLastMessageResultAndProgress) {
    exportingModel();
    lastPrepared().exporter->answer = [](const ProgressCallback& progress, std::stop_token) -> ExportResult {
        progress({ExportStage::finalizing, 1, 2, "Nearly"});
        throw SpokenError("Disk full.");
    };
    settle();
    ASSERT_TRUE(state().errorMessage.has_value());
    model->startExport();
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_EQ(state().result, std::nullopt);
    EXPECT_EQ(state().progress, (ExportProgress{ExportStage::preparing, 0, 1, "Preparing"}));
}

TEST_F(AppModelExport, unwritableDestinationKeepsTheScreenAndTells) {
    modelAtExportSetup();
    destinationIsWritable = false;
    model->startExport();
    EXPECT_EQ(state().errorMessage,
              "This folder can’t be written to. Choose a different location to save the album.");
    EXPECT_EQ(state().screen, AppScreen::exportSetup);
    EXPECT_FALSE(model->isExporting());
    EXPECT_TRUE(presence->calls.empty());
    EXPECT_EQ(background->waiting(), 0U);
}

TEST_F(AppModelExport, nothingStartsWithoutASelection) {
    startedModel();
    model->startExport();
    EXPECT_TRUE(announcements.empty());
    EXPECT_FALSE(model->isExporting());
}

TEST_F(AppModelExport, nothingStartsWithoutAnExporter) {
    makeModel();
    model->setSelectedConversationID(SourceID{"1"});
    model->startExport();
    EXPECT_EQ(state().screen, AppScreen::onboarding);
    EXPECT_FALSE(model->isExporting());
}

TEST_F(AppModelExport, filteredAwaySelectionIsStillExported) {
    modelAtExportSetup();
    model->setSearchText("Kath");
    mainThread->advance(std::chrono::seconds(1));
    settle();
    ASSERT_EQ(model->selectedConversation(), nullptr);
    model->startExport();
    settle();
    EXPECT_EQ(lastPrepared().exporter->requests().size(), 1U);
}

TEST_F(AppModelExport, secondStartDuringAnExportDoesNothing) {
    exportingModel();
    destinationIsWritable = false; // Would be told.
    model->startExport();
    EXPECT_TRUE(announcements.empty());
    EXPECT_EQ(background->waiting(), 1U);
}

TEST_F(AppModelExport, successSetsTheResultAndCompletes) {
    exportingModel();
    lastPrepared().exporter->result = album();
    settle();
    EXPECT_EQ(state().result, album());
    EXPECT_EQ(state().screen, AppScreen::complete);
    EXPECT_FALSE(model->isExporting());
    EXPECT_EQ(presence->calls,
              (std::vector<std::string>{"started", "finished Grace /home/ada/Downloads/Grace 2024"}));
}

TEST_F(AppModelExport, resultIsAnnouncedBeforeTheScreen) {
    exportingModel();
    settle();
    EXPECT_EQ(announcements, (std::vector{AppModelProperty::result, AppModelProperty::screen}));
}

struct FinishedTitleCase {
    const char* name;
    std::string album;
    std::string title;
};

class AppModelExportTitle : public ModelHarness, public testing::WithParamInterface<FinishedTitleCase> {};

TEST_P(AppModelExportTitle, withoutASelectedConversationIsTheAlbumsName) {
    exportingModel();
    lastPrepared().exporter->result.archiveURL = GetParam().album;
    model->setSelectedConversationID(std::nullopt);
    settle();
    EXPECT_EQ(presence->calls.back(), "finished " + GetParam().title + " " + GetParam().album);
}

INSTANTIATE_TEST_SUITE_P(Table, AppModelExportTitle,
                         testing::Values(FinishedTitleCase{"plain", "/albums/Grace 2024", "Grace 2024"},
                                         FinishedTitleCase{"trailingSlash", "/albums/Grace 2024/",
                                                           "Grace 2024"}),
                         [](const auto& step) { return std::string(step.param.name); });

TEST_F(AppModelExport, reportsThatPileUpAreMergedIntoOne) {
    exportingModel();
    announcements.clear();
    lastPrepared().exporter->answer = [](const ProgressCallback& progress, std::stop_token) {
        for (int step = 1; step <= 50'000; ++step)
            progress({ExportStage::copyingAttachments, step, 50'000, "photo.jpg"});
        return ExportResult();
    };
    background->perform();
    EXPECT_EQ(mainThread->posted(), 2U) << "one report, and the end";
    mainThread->turnOnce();
    EXPECT_EQ(state().progress.completed, 50'000);
    EXPECT_EQ(announced(AppModelProperty::progress), 1);
}

TEST_F(AppModelExport, progressIsShownAndPresented) {
    exportingModel();
    lastPrepared().exporter->answer = [](const ProgressCallback& progress, std::stop_token) {
        progress({ExportStage::copyingAttachments, 1, 2, "photo.jpg"});
        return ExportResult();
    };
    background->perform();
    EXPECT_EQ(announced(AppModelProperty::progress), 0) << "only on the main thread";
    mainThread->turnOnce();
    EXPECT_EQ(state().progress, (ExportProgress{ExportStage::copyingAttachments, 1, 2, "photo.jpg"}));
    EXPECT_EQ(presence->calls, (std::vector<std::string>{"started", "progressed 0.450"}));
}

TEST_F(AppModelExport, lastReportWins) {
    exportingModel();
    lastPrepared().exporter->answer = [](const ProgressCallback& progress, std::stop_token) {
        progress({ExportStage::copyingAttachments, 1, 2, "one"});
        progress({ExportStage::copyingAttachments, 2, 2, "two"});
        return ExportResult();
    };
    settle();
    EXPECT_EQ(state().progress.detail, "two");
}

TEST_F(AppModelExport, reportAfterTheEndChangesNothing) {
    exportingModel();
    settle();
    announcements.clear();
    presence->calls.clear();
    lastPrepared().exporter->lastProgress({ExportStage::copyingAttachments, 1, 2, "late"});
    settle();
    EXPECT_TRUE(announcements.empty());
    EXPECT_TRUE(presence->calls.empty());
}

TEST_F(AppModelExport, reportOfAnEarlierExportDoesNotReachTheNext) {
    exportingModel();
    settle();
    const ProgressCallback earlier = lastPrepared().exporter->lastProgress;
    model->startExport();
    earlier({ExportStage::finalizing, 1, 1, "late"});
    mainThread->turn();
    EXPECT_EQ(state().progress.detail, "Preparing");
}

TEST_F(AppModelExport, cancellingGoesBackToTheSetupWithoutAMessage) {
    exportingModel();
    failWith([](std::stop_token stop) { throwIfCancelled(stop); });
    model->cancelExport();
    EXPECT_EQ(state().screen, AppScreen::exporting) << "until the task has stopped";
    EXPECT_TRUE(model->isExporting());
    settle();
    EXPECT_EQ(state().screen, AppScreen::exportSetup);
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_EQ(state().result, std::nullopt);
    EXPECT_FALSE(model->isExporting());
    EXPECT_EQ(presence->calls, (std::vector<std::string>{"started", "clearBadge"}));
}

TEST_F(AppModelExport, cancelReachesTheRunningExporter) {
    exportingModel();
    bool wasStopped = false;
    failWith([&](std::stop_token stop) {
        EXPECT_FALSE(stop.stop_requested());
        model->cancelExport();
        wasStopped = stop.stop_requested();
        throwIfCancelled(stop);
    });
    settle();
    EXPECT_TRUE(wasStopped);
    EXPECT_EQ(state().screen, AppScreen::exportSetup);
}

TEST_F(AppModelExport, albumThatWasFinishedInSpiteOfTheCancelCounts) {
    exportingModel();
    failWith([&](std::stop_token) { model->cancelExport(); });
    settle();
    EXPECT_EQ(state().screen, AppScreen::complete);
    EXPECT_TRUE(state().result.has_value());
}

TEST_F(AppModelExport, cancelWithoutAnExportDoesNothing) {
    modelAtExportSetup();
    model->cancelExport();
    EXPECT_TRUE(announcements.empty());
    model->startExport();
    settle();
    EXPECT_EQ(state().screen, AppScreen::complete);
}

TEST_F(AppModelExport, failureGoesBackToTheSetupWithItsWordsAndKeepsTheChoices) {
    modelAtExportSetup();
    model->setDestination("/albums");
    model->setOptions({true, false, true});
    failWith([](std::stop_token) { throw SpokenError("Disk full."); });
    model->startExport();
    settle();
    EXPECT_EQ(state().screen, AppScreen::exportSetup);
    EXPECT_EQ(state().errorMessage, "Disk full.");
    EXPECT_EQ(state().destination, "/albums");
    EXPECT_EQ(state().options, (ExportOptions{true, false, true}));
    EXPECT_FALSE(model->isExporting());
    EXPECT_EQ(presence->calls, (std::vector<std::string>{"started", "clearBadge"}));
}

struct ExportEnd {
    const char* name;
    std::function<ExportResult()> answer;
    AppScreen screen;
};

class ExportEndUnderSetupGuide : public AppModelExport, public testing::WithParamInterface<ExportEnd> {};

TEST_P(ExportEndUnderSetupGuide, movesTheScreenAndLeavesTheGuideOpen) {
    exportingModel();
    model->setShowingSetupGuide(true);
    lastPrepared().exporter->answer = [](const ProgressCallback&, std::stop_token) {
        return GetParam().answer();
    };
    settle();
    EXPECT_TRUE(state().showingSetupGuide);
    EXPECT_EQ(announced(AppModelProperty::showingSetupGuide), 1);
    EXPECT_EQ(state().screen, GetParam().screen);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ExportEndUnderSetupGuide,
    testing::Values(
        ExportEnd{"delivered", [] { return ExportResult(); }, AppScreen::complete},
        ExportEnd{"cancelled", []() -> ExportResult { throw CancellationError(); }, AppScreen::exportSetup},
        ExportEnd{"failed", []() -> ExportResult { throw SpokenError("Full."); }, AppScreen::exportSetup}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(AppModelExport, anotherExportCanFollow) {
    exportingModel();
    failWith([](std::stop_token) { throw SpokenError("Disk full."); });
    settle();
    lastPrepared().exporter->answer = nullptr;
    model->startExport();
    settle();
    EXPECT_EQ(state().screen, AppScreen::complete);
}

TEST_F(AppModelExport, runningExportHoldsTheModel) {
    exportingModel();
    const std::weak_ptr<AppModel> held = model;
    model.reset();
    EXPECT_FALSE(held.expired());
    settle();
    EXPECT_EQ(presence->calls.back(), "finished Grace ");
    EXPECT_TRUE(held.expired());
}

TEST_F(AppModelExport, sourceSwitchedUnderARunningExportIsClosedAtItsEnd) {
    exportingModel();
    const PreparedFake local = lastPrepared();
    model->selectSource("open-backup");
    background->perform(1);
    mainThread->turn();
    EXPECT_EQ(state().selectedSourceID, "open-backup");
    EXPECT_EQ(*local.teardowns, 0) << "the export still reads from it";
    settle();
    EXPECT_EQ(*local.teardowns, 1);
    EXPECT_EQ(*lastPrepared().teardowns, 0);
}

TEST_F(AppModelExport, endOfAnExportLeavesTheSourceInUseOpen) {
    exportingModel();
    settle();
    EXPECT_EQ(*lastPrepared().teardowns, 0);
}

} // namespace
} // namespace quillbook::test
