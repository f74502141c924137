#include "core/model/AppModel.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace quillbook {

std::optional<AppModel::Subject> AppModel::subject() const {
    if (!state_.selectedConversationID || !state_.store) return std::nullopt;
    return Subject{*state_.selectedConversationID, state_.store};
}

std::vector<AppModelProperty> AppModel::forgetSurveys() {
    tasks_.forgetSurveys();
    std::vector<AppModelProperty> forgotten;
    if (std::exchange(state_.priorArchive, std::nullopt)) {
        forgotten.push_back(AppModelProperty::priorArchive);
    }
    if (std::exchange(state_.attachmentStorage, std::nullopt)) {
        forgotten.push_back(AppModelProperty::attachmentStorage);
    }
    if (std::exchange(state_.cacheRecovery, std::nullopt)) {
        forgotten.push_back(AppModelProperty::cacheRecovery);
    }
    return forgotten;
}

std::optional<std::int64_t> AppModel::newMessagesSincePriorArchive() const {
    const ConversationSummary* conversation = selectedConversation();
    if (!state_.priorArchive || conversation == nullptr) return std::nullopt;
    const std::int64_t now = conversation->messageCount;
    const std::int64_t then = state_.priorArchive->sourceMessageCount;
    if (then >= now) return 0;
    // The album's number comes from a file; below 0, the difference may exceed what the result holds.
    const auto difference = static_cast<std::uint64_t>(now) - static_cast<std::uint64_t>(then);
    constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int64_t>(std::min(difference, most));
}

void AppModel::refreshPriorArchive(Completion done) {
    using Found = std::optional<PriorArchiveSummary>;
    tasks_.priorArchive.cancel();
    if (!state_.selectedConversationID) {
        change(state_.priorArchive, std::nullopt, AppModelProperty::priorArchive);
        return finish(done);
    }
    if (isTornDown_) return finish(done);
    const SourceID id = *state_.selectedConversationID;
    const std::filesystem::path folder = state_.destination;
    inBackground<Found>(
        {tasks_.priorArchive.begin(), std::move(done)},
        [scan = services_.priorArchive, id, folder](std::stop_token) { return scan(id, folder); },
        [id, folder](AppModel& model, TaskOutcome<Found> outcome, const Run& ended) {
            auto& state = model.state_;
            if (state.selectedConversationID == id && state.destination == folder) {
                auto* found = std::get_if<Found>(&outcome);
                model.change(state.priorArchive, found != nullptr ? std::move(*found) : std::nullopt,
                             AppModelProperty::priorArchive);
            }
            finish(ended.done);
        },
        BackgroundRunner::Priority::utility); // Reads a file in every folder of the destination.
}

void AppModel::refreshAttachmentStorage(Completion done) {
    tasks_.attachmentStorage.cancel();
    tasks_.cacheRecovery.cancel();
    change(state_.attachmentStorage, std::nullopt, AppModelProperty::attachmentStorage);
    showCacheRecovery(std::nullopt);
    const auto asked = subject();
    if (isTornDown_ || !asked) return finish(done);
    inBackground<AttachmentStorageSurvey>(
        {tasks_.attachmentStorage.begin(), std::move(done)},
        [asked = *asked](std::stop_token stop) {
            return asked.store->surveyAttachmentStorage(asked.conversation, stop);
        },
        [asked = *asked](AppModel& model, const TaskOutcome<AttachmentStorageSurvey>& outcome,
                         const Run& ended) { model.takeAttachmentStorage(outcome, asked, ended); });
}

void AppModel::takeAttachmentStorage(const TaskOutcome<AttachmentStorageSurvey>& outcome,
                                     const Subject& asked, Run run) {
    const auto* survey = std::get_if<AttachmentStorageSurvey>(&outcome);
    // Without an answer there are no numbers, and nothing is said about it.
    if (survey == nullptr || subject() != asked) return finish(run.done);
    change(state_.attachmentStorage, *survey, AppModelProperty::attachmentStorage);
    // Whoever heard of the numbers may have selected another conversation.
    if (run.stop.stop_requested() || subject() != asked) return finish(run.done);
    surveyCaches(std::move(run.done));
}

} // namespace quillbook
