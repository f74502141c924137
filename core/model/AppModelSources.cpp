#include "core/model/AppModel.h"

#include <algorithm>
#include <utility>

namespace quillbook {
namespace {

/// What finds the same person in another source, whose ids and titles may differ.
std::optional<std::string> searchHint(const ConversationSummary* conversation) {
    if (conversation == nullptr) return std::nullopt;
    const auto& addresses = conversation->participantAddresses;
    return addresses.empty() ? conversation->title : addresses.front();
}

} // namespace

void AppModel::selectSource(const std::string& id, Completion done) {
    const auto& all = state_.availableSources;
    const auto source = std::find_if(all.begin(), all.end(), [&](const auto& each) { return each.id == id; });
    if (source == all.end() || state_.selectedSourceID == id) return finish(done);
    if (source->requiresPassword) {
        change(state_.pendingPasswordSource, *source, AppModelProperty::pendingPasswordSource);
        return finish(done);
    }
    activateSource(*source, std::nullopt, PreparationOrigin::choice, std::move(done));
}

void AppModel::lookInDeviceBackup(Completion done) {
    const MessageSource* backup = deviceBackupSource();
    if (backup == nullptr) return finish(done);
    const std::string id = backup->id; // An observer may change the list that holds it.
    setPendingSearchHint(searchHint(selectedConversation()));
    change(state_.result, std::nullopt, AppModelProperty::result);
    setSelectedConversationID(std::nullopt);
    show(AppScreen::chooseConversation);
    selectSource(id, std::move(done));
}

void AppModel::submitBackupPassword(SecretText password, Completion done) {
    if (!state_.pendingPasswordSource) return finish(done);
    activateSource(*state_.pendingPasswordSource, std::move(password), PreparationOrigin::passwordPrompt,
                   std::move(done));
}

void AppModel::cancelBackupPassword() {
    change(state_.pendingPasswordSource, std::nullopt, AppModelProperty::pendingPasswordSource);
    if (!isPromptPreparing_) return;
    // The abandoned call may take a while to notice. The user need not wait for it to pick another source.
    tasks_.preparation.cancel();
    endPreparation();
}

void AppModel::activateSource(const MessageSource& source, std::optional<SecretText> password,
                              PreparationOrigin origin, Completion done) {
    if (isTornDown_ || isPreparingSource_) return finish(done);
    isPreparingSource_ = true;
    isPromptPreparing_ = origin == PreparationOrigin::passwordPrompt;
    const Run run{tasks_.preparation.begin(), std::move(done)};
    const MessageSource wanted = source; // An observer may change the list that holds it.
    refreshLoading();
    dismissError();
    inBackground<OpenedSource>(
        run,
        [provider = services_.sourceProvider, wanted, password = std::move(password)](std::stop_token stop) {
            return openSource(*provider, wanted, password, stop);
        },
        [id = wanted.id, origin](AppModel& model, TaskOutcome<OpenedSource> outcome, const Run& ended) {
            model.isPromptPreparing_ = false;
            if (auto* opened = std::get_if<OpenedSource>(&outcome)) {
                return model.installSource(id, std::move(*opened), ended);
            }
            model.failPreparation(std::get<TaskFailure>(outcome), origin, ended);
        });
}

void AppModel::installSource(const std::string& id, OpenedSource opened, Run run) {
    const auto forgotten = forgetSurveys(); // They say nothing about the new source.
    closeCurrentSource();
    for (const AppModelProperty each : forgotten)
        announce(each);
    change(state_.store, std::move(opened.store), AppModelProperty::store);
    change(state_.exporter, std::move(opened.exporter), AppModelProperty::exporter);
    currentTeardown_ = std::move(opened.teardown);
    change(state_.selectedSourceID, id, AppModelProperty::selectedSourceID);
    change(state_.pendingPasswordSource, std::nullopt, AppModelProperty::pendingPasswordSource);
    setSelectedConversationID(std::nullopt);
    if (auto hint = std::exchange(pendingSearchHint_, std::nullopt)) setSearchText(std::move(*hint));
    change(state_.conversations, {}, AppModelProperty::conversations);
    loadConversations([weak = weak_from_this(), done = std::move(run.done)] {
        if (const auto model = weak.lock()) model->endPreparation();
        finish(done);
    });
}

void AppModel::failPreparation(const TaskFailure& failure, PreparationOrigin origin, const Run& run) {
    if (!failure.isCancellation) showError(failure.words);
    if (origin == PreparationOrigin::passwordPrompt) {
        change(state_.pendingPasswordSource, std::nullopt, AppModelProperty::pendingPasswordSource);
    }
    endPreparation();
    finish(run.done);
}

void AppModel::endPreparation() {
    isPreparingSource_ = false;
    isPromptPreparing_ = false;
    refreshLoading();
}

void AppModel::closeCurrentSource() {
    tasks_.list.cancel(); // An answer of the source that closes is for nobody.
    const auto teardown = std::exchange(currentTeardown_, nullptr);
    // Closed under a running export, the source would give it no more attachments: the end of the export
    // closes it.
    if (teardown && teardown != exportedSource_) teardown->close();
}

} // namespace quillbook
