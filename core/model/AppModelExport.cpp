#include "core/model/AppModel.h"
#include "core/model/LatestProgress.h"
#include "core/text/Localization.h"

#include <utility>

namespace quillbook {
namespace {

std::string lastComponent(const std::filesystem::path& folder) {
    return (folder.has_filename() ? folder : folder.parent_path()).filename().string();
}

} // namespace

void AppModel::continueToExportSetup() {
    if (selectedConversation() == nullptr) return;
    show(AppScreen::exportSetup);
    refreshPriorArchive();
    refreshAttachmentStorage();
}

void AppModel::startExport() {
    if (isTornDown_ || !state_.selectedConversationID || !state_.exporter || isExporting()) return;
    if (!services_.isWritableFolder(state_.destination)) {
        return showError(
            localized("This folder can’t be written to. Choose a different location to save the album."));
    }
    runExportTask();
}

void AppModel::runExportTask() {
    const std::stop_token stop = tasks_.exporting.begin();
    exportedSource_ = currentTeardown_;
    const auto work = [exporter = state_.exporter, id = *state_.selectedConversationID,
                       destination = state_.destination, options = state_.options,
                       progress = progressHop(stop)](std::stop_token token) {
        return exporter->exportConversation(id, destination, options, progress, token);
    };
    show(AppScreen::exporting);
    dismissError();
    change(state_.result, std::nullopt, AppModelProperty::result);
    change(state_.progress, {ExportStage::preparing, 0, 1, localized("Preparing")},
           AppModelProperty::progress);
    services_.presence->exportStarted();
    // Holds the model: the end of an export always reaches it.
    runInBackground<ExportResult>(road(), BackgroundRunner::Priority::userInitiated, stop, work,
                                  [model = shared_from_this()](TaskOutcome<ExportResult> outcome) {
                                      model->endExport(std::move(outcome));
                                  });
}

ProgressCallback AppModel::progressHop(const std::stop_token& stop) {
    return [mainThread = services_.mainThread, weak = weak_from_this(), stop,
            latest = std::make_shared<LatestProgress>()](const ExportProgress& progress) {
        if (!latest->put(progress)) return;
        mainThread->post([weak, stop, latest] {
            const auto report = latest->take();
            const auto model = weak.lock();
            // A report may be under way while its export ends; by then the badge is gone and another export
            // may run.
            if (report && model && model->tasks_.exporting.holds(stop)) model->showProgress(*report);
        });
    };
}

void AppModel::showProgress(const ExportProgress& progress) {
    change(state_.progress, progress, AppModelProperty::progress);
    services_.presence->exportProgressed(progress.fractionCompleted());
}

void AppModel::cancelExport() {
    tasks_.exporting.cancel();
}

void AppModel::endExport(TaskOutcome<ExportResult> outcome) {
    const auto exported = std::exchange(exportedSource_, nullptr);
    if (exported && exported != currentTeardown_) exported->close();
    if (auto* result = std::get_if<ExportResult>(&outcome)) {
        completeExport(std::move(*result));
    } else {
        services_.presence->clearBadge();
        const auto& failure = std::get<TaskFailure>(outcome);
        if (!failure.isCancellation) showError(failure.words);
        show(AppScreen::exportSetup);
    }
    tasks_.exporting.clear();
}

void AppModel::completeExport(ExportResult result) {
    const std::filesystem::path album = result.archiveURL;
    change(state_.result, std::move(result), AppModelProperty::result);
    const ConversationSummary* conversation = selectedConversation();
    services_.presence->exportFinished(conversation != nullptr ? conversation->title : lastComponent(album),
                                       album);
    show(AppScreen::complete);
}

} // namespace quillbook
