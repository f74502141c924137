#pragma once

#include "core/interfaces/MainThread.h"

#include <functional>
#include <memory>

namespace quillbook {

/// What looks for newer versions of the application, with its own windows and its own schedule.
class UpdateService {
public:
    using ChangeHandler = std::function<void()>;

    virtual ~UpdateService() = default;
    /// Main thread only.
    virtual bool canCheckForUpdates() const = 0;
    virtual void checkForUpdates() = 0;
    /// Calls `handler` from any thread after each change of `canCheckForUpdates`, until the token is dropped.
    virtual std::shared_ptr<void> observe(ChangeHandler handler) = 0;
};

/// The update service as the menu sees it. One for the whole application; main thread only.
class UpdateController {
public:
    /// Without a service there are no updates, and no menu item for them.
    UpdateController(std::shared_ptr<UpdateService> service, std::shared_ptr<MainThread> mainThread);
    UpdateController(const UpdateController&) = delete;
    UpdateController& operator=(const UpdateController&) = delete;

    bool hasUpdates() const { return state_->service != nullptr; }
    bool canCheckForUpdates() const { return state_->canCheckForUpdates; }
    void checkForUpdates();
    /// Called on the main thread after each change of `canCheckForUpdates`. Replaces the observer before it.
    void observe(std::function<void()> observer) { state_->observer = std::move(observer); }

private:
    /// Outlives the controller only within a change that is under way.
    struct State {
        std::shared_ptr<UpdateService> service;
        bool canCheckForUpdates = false;
        std::function<void()> observer;

        void refresh();
    };

    std::shared_ptr<State> state_;
    std::shared_ptr<void> observation_;
};

} // namespace quillbook
