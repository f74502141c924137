#include "core/model/AppModel.h"
#include "core/model/PreferenceKeys.h"
#include "core/text/Localization.h"

#include <algorithm>
#include <utility>

namespace quillbook {

void AppModel::start(Completion done) {
    if (isTornDown_) return finish(done);
    change(state_.accessStatus, MessagesAccessStatus(), AppModelProperty::accessStatus);
    inBackground<MessagesAccessStatus>(
        {tasks_.start.begin(), std::move(done)},
        [checker = services_.accessChecker](std::stop_token stop) { return checker->checkAccess(stop); },
        [](AppModel& model, TaskOutcome<MessagesAccessStatus> outcome, const Run& run) {
            if (const auto* failure = std::get_if<TaskFailure>(&outcome)) {
                outcome = MessagesAccessStatus::failed(failure->words);
            }
            model.takeAccessStatus(std::get<MessagesAccessStatus>(std::move(outcome)), run);
        });
}

void AppModel::takeAccessStatus(MessagesAccessStatus status, Run run) {
    change(state_.accessStatus, std::move(status), AppModelProperty::accessStatus);
    if (!services_.preferences->truth(preferenceKeys::onboardingCompleted).value_or(false)) {
        show(AppScreen::onboarding);
        return finish(run.done);
    }
    if (!state_.accessStatus.isGranted()) {
        show(AppScreen::access);
        return finish(run.done);
    }
    if (hasInjectedStore_) {
        show(AppScreen::chooseConversation);
        return loadConversations(std::move(run.done));
    }
    listSources(std::move(run));
}

void AppModel::listSources(Run run) {
    inBackground<std::vector<MessageSource>>(
        std::move(run),
        [provider = services_.sourceProvider](std::stop_token stop) {
            return provider->availableSources(stop);
        },
        [](AppModel& model, TaskOutcome<std::vector<MessageSource>> outcome, const Run& ended) {
            if (auto* sources = std::get_if<std::vector<MessageSource>>(&outcome)) {
                return model.takeSources(std::move(*sources), ended);
            }
            model.show(AppScreen::chooseConversation);
            model.showError(std::get<TaskFailure>(outcome).words);
            finish(ended.done);
        });
}

void AppModel::takeSources(std::vector<MessageSource> sources, Run run) {
    change(state_.availableSources, std::move(sources), AppModelProperty::availableSources);
    show(AppScreen::chooseConversation);
    const auto& all = state_.availableSources;
    const auto local =
        std::find_if(all.begin(), all.end(), [](const auto& each) { return each.isLocalMac(); });
    if (local == all.end()) {
        showError(localized("No message sources are available."));
        return finish(run.done);
    }
    activateSource(*local, std::nullopt, PreparationOrigin::choice, std::move(run.done));
}

void AppModel::replayOnboarding() {
    setOnboardingPage(0);
    change(state_.isReplayingOnboarding, true, AppModelProperty::isReplayingOnboarding);
    show(AppScreen::onboarding);
}

void AppModel::finishOnboarding() {
    services_.preferences->setTruth(preferenceKeys::onboardingCompleted, true);
    setOnboardingPage(0);
    if (!state_.isReplayingOnboarding) return start();
    change(state_.isReplayingOnboarding, false, AppModelProperty::isReplayingOnboarding);
    show(state_.accessStatus.isGranted() ? AppScreen::chooseConversation : AppScreen::access);
}

} // namespace quillbook
