#include "core/model/AppModel.h"

#include <string_view>
#include <utility>

namespace quillbook {
namespace {

/// The id of this machine's own library among the sources.
constexpr std::string_view ownLibraryID = "local-mac";

} // namespace

bool AppModel::usesOwnLibrary() const {
    return state_.selectedSourceID == ownLibraryID;
}

void AppModel::showCacheRecovery(std::optional<CacheRecoveryStatus> status) {
    change(state_.cacheRecovery, std::move(status), AppModelProperty::cacheRecovery);
}

void AppModel::failCacheRecovery(const TaskFailure& failure) {
    if (failure.isCancellation) return showCacheRecovery(std::nullopt);
    showCacheRecovery(CacheRecoveryStatus{CacheRecoveryStatus::Failed{failure.words}});
}

void AppModel::surveyCaches(Completion done) {
    const auto asked = subject();
    if (isTornDown_ || !usesOwnLibrary() || !asked) return finish(done);
    Run run{tasks_.cacheRecovery.begin(), std::move(done)};
    showCacheRecovery(CacheRecoveryStatus{CacheRecoveryStatus::Surveying{}});
    inBackground<MissingAttachments>(
        std::move(run),
        [asked = *asked](std::stop_token stop) {
            return asked.store->missingAttachments(asked.conversation, stop);
        },
        [asked = *asked](AppModel& model, TaskOutcome<MissingAttachments> outcome, const Run& ended) {
            model.takeMissingAttachments(std::move(outcome), asked, ended);
        });
}

void AppModel::takeMissingAttachments(TaskOutcome<MissingAttachments> outcome, const Subject& asked,
                                      Run run) {
    if (subject() != asked) return finish(run.done);
    if (const auto* failure = std::get_if<TaskFailure>(&outcome)) {
        failCacheRecovery(*failure);
        return finish(run.done);
    }
    auto& missing = std::get<MissingAttachments>(outcome);
    if (missing.empty()) {
        showCacheRecovery(CacheRecoveryStatus{CacheRecoveryStatus::NothingMissing{}});
        return finish(run.done);
    }
    searchCaches(std::move(missing), asked, std::move(run));
}

void AppModel::searchCaches(MissingAttachments missing, const Subject& asked, Run run) {
    const auto count = static_cast<std::int64_t>(missing.size());
    inBackground<RecoveryReport>(
        std::move(run),
        [caches = services_.cacheRecovery, missing = std::move(missing)](std::stop_token) {
            return caches->findRecoverable(missing);
        },
        [asked, count](AppModel& model, TaskOutcome<RecoveryReport> outcome, const Run& ended) {
            if (model.subject() != asked) return finish(ended.done);
            if (const auto* failure = std::get_if<TaskFailure>(&outcome)) {
                model.failCacheRecovery(*failure);
            } else if (auto& report = std::get<RecoveryReport>(outcome); report.candidates.empty()) {
                model.showCacheRecovery(CacheRecoveryStatus{CacheRecoveryStatus::NothingRecoverable{count}});
            } else {
                model.showCacheRecovery(CacheRecoveryStatus{std::move(report)});
            }
            finish(ended.done);
        },
        BackgroundRunner::Priority::utility); // Walks every folder of the caches.
}

void AppModel::recoverFromCaches(RecoveryReport report, Completion done) {
    const auto asked = subject();
    if (isTornDown_ || !usesOwnLibrary() || !asked) return finish(done);
    Run run{tasks_.cacheRecovery.begin(), std::move(done)};
    const std::stop_token stop = run.stop;
    showCacheRecovery(CacheRecoveryStatus{CacheRecoveryStatus::Recovering{}});
    // Copying cannot be called back: the model hears of its end also where another task took the slot.
    runInBackground<RecoveryOutcome>(
        road(), BackgroundRunner::Priority::userInitiated, stop,
        [caches = services_.cacheRecovery, candidates = std::move(report.candidates),
         root = services_.recoveryRoot](std::stop_token) { return caches->recover(candidates, root); },
        [weak = weak_from_this(), run = std::move(run),
         asked = *asked](TaskOutcome<RecoveryOutcome> outcome) {
            const auto model = weak.lock();
            if (!model) return finish(run.done);
            model->takeRecovery(std::move(outcome), asked, run);
        });
}

void AppModel::takeRecovery(TaskOutcome<RecoveryOutcome> outcome, const Subject& asked, const Run& run) {
    const auto* failure = std::get_if<TaskFailure>(&outcome);
    if (run.stop.stop_requested() || subject() != asked) {
        // What is shown now stays, unless it was found out before the copies stood.
        if (failure == nullptr && isOutdatedByRecovery()) return refreshAttachmentStorage(run.done);
        return finish(run.done);
    }
    if (failure != nullptr) {
        failCacheRecovery(*failure);
        return finish(run.done);
    }
    // The outcome stands for this moment only: what counts is what is still missing.
    showCacheRecovery(CacheRecoveryStatus{std::get<RecoveryOutcome>(outcome)});
    refreshAttachmentStorage(run.done);
}

bool AppModel::isOutdatedByRecovery() const {
    const auto& shown = state_.cacheRecovery;
    const bool isRecovering = shown && std::holds_alternative<CacheRecoveryStatus::Recovering>(shown->state);
    // The end of a later recovery refreshes the counts itself.
    return !isTornDown_ && usesOwnLibrary() && !isRecovering && tasks_.haveSurveyed();
}

} // namespace quillbook
