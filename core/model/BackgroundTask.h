#pragma once

#include "core/interfaces/BackgroundRunner.h"
#include "core/interfaces/MainThread.h"
#include "core/records/Cancellation.h"

#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <utility>
#include <variant>

namespace quillbook {

/// How a task ended that gave no value. It carries words instead of the exception, so that no exception
/// object changes threads.
struct TaskFailure {
    bool isCancellation = false; ///< Then nothing is shown.
    std::string words;           ///< What a user reads.
};

template <typename Value>
using TaskOutcome = std::variant<Value, TaskFailure>;

/// The exception that is being handled, in words. To be called inside a handler only.
TaskFailure failureOfCurrentException() noexcept;

/// Does `work` here and now and turns whatever it throws into a failure. Work that was cancelled before does
/// not begin.
template <typename Value>
TaskOutcome<Value> attempt(const std::function<Value(std::stop_token)>& work, const std::stop_token& stop) {
    try {
        throwIfCancelled(stop);
        return work(stop);
    } catch (...) { // A thread begins here: nothing may leave it.
        return failureOfCurrentException();
    }
}

/// The two threads of a task.
struct TaskRoad {
    std::shared_ptr<BackgroundRunner> background;
    std::shared_ptr<MainThread> mainThread;
};

/// Does `work` in the background and hands its value or its failure to `then` on the main thread, always
/// exactly once. What `work` holds is released in the background before that; what `then` holds is released
/// on the main thread.
template <typename Value>
void runInBackground(const TaskRoad& road, BackgroundRunner::Priority priority, std::stop_token stop,
                     std::function<Value(std::stop_token)> work,
                     std::function<void(TaskOutcome<Value>)> then) {
    road.background->run(priority, [mainThread = road.mainThread, stop = std::move(stop),
                                    work = std::move(work), then = std::move(then)]() mutable {
        TaskOutcome<Value> outcome = attempt(work, stop);
        work = nullptr;
        mainThread->post([then = std::exchange(then, nullptr), outcome = std::move(outcome)]() mutable {
            then(std::move(outcome));
        });
    });
}

} // namespace quillbook
