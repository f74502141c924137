#include "shell/application/UpdateController.h"

#include <utility>

namespace quillbook {

UpdateController::UpdateController(std::shared_ptr<UpdateService> service,
                                   std::shared_ptr<MainThread> mainThread)
    : state_(std::make_shared<State>()) {
    state_->service = std::move(service);
    if (!hasUpdates()) return;
    // Observed before it is read: a change in between is not lost.
    observation_ =
        state_->service->observe([weak = std::weak_ptr(state_), mainThread = std::move(mainThread)] {
            mainThread->post([weak] {
                if (const auto state = weak.lock()) state->refresh();
            });
        });
    state_->refresh();
}

void UpdateController::checkForUpdates() {
    if (hasUpdates()) state_->service->checkForUpdates();
}

void UpdateController::State::refresh() {
    const bool couldBefore = std::exchange(canCheckForUpdates, service->canCheckForUpdates());
    if (couldBefore == canCheckForUpdates) return;
    if (observer) observer();
}

} // namespace quillbook
