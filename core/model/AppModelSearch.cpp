#include "core/model/AppModel.h"

#include <chrono>
#include <utility>

namespace quillbook {
namespace {

using namespace std::chrono_literals;

/// A fast typist asks the database once.
constexpr std::chrono::nanoseconds searchDelay = 220ms;

} // namespace

void AppModel::setSearchText(std::string text) {
    if (state_.searchText == text) return;
    state_.searchText = std::move(text);
    startSearch(); // Before the observer hears of it, which may change the text once more.
    announce(AppModelProperty::searchText);
}

void AppModel::startSearch() {
    tasks_.list.cancel(); // It was asked for another text.
    const std::stop_token stop = tasks_.search.begin();
    if (isTornDown_) return;
    services_.mainThread->postAfter(searchDelay, stop,
                                    [weak = weak_from_this(), stop, text = state_.searchText] {
                                        if (stop.stop_requested()) return;
                                        const auto model = weak.lock();
                                        if (model && model->state_.searchText == text)
                                            model->loadConversations();
                                    });
}

void AppModel::loadConversations(Completion done) {
    if (isTornDown_ || !state_.store) return finish(done);
    const std::string asked = state_.searchText;
    const std::shared_ptr<MessagesStore> store = state_.store;
    const Run run{tasks_.list.begin(), std::move(done)};
    isListing_ = true;
    refreshLoading();
    dismissError();
    inBackground<Conversations>(
        run, [store, asked](std::stop_token stop) { return store->searchConversations(asked, stop); },
        [store, asked](AppModel& model, TaskOutcome<Conversations> outcome, const Run& ended) {
            model.takeConversations(std::move(outcome), asked, store, ended);
        });
}

void AppModel::takeConversations(TaskOutcome<Conversations> outcome, const std::string& asked,
                                 const std::shared_ptr<MessagesStore>& store, const Run& run) {
    // Where this is false, a later question is under way, and its answer ends the loading.
    const auto isCurrent = [&] {
        return !run.stop.stop_requested() && state_.store == store && state_.searchText == asked;
    };
    if (!isCurrent()) return finish(run.done);
    if (auto* conversations = std::get_if<Conversations>(&outcome)) {
        change(state_.conversations, std::move(*conversations), AppModelProperty::conversations);
    } else if (const auto& failure = std::get<TaskFailure>(outcome); !failure.isCancellation) {
        showError(failure.words);
    }
    if (isCurrent()) {
        isListing_ = false;
        refreshLoading();
    }
    finish(run.done);
}

void AppModel::chooseConversation() {
    if (!state_.accessStatus.isGranted() || !state_.store) return start();
    change(state_.result, std::nullopt, AppModelProperty::result);
    setSelectedConversationID(std::nullopt); // And with it what was found out about the conversation.
    show(AppScreen::chooseConversation);
    loadConversations();
}

} // namespace quillbook
