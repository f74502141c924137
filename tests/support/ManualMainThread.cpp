#include "tests/support/ManualMainThread.h"

#include <algorithm>
#include <utility>

namespace quillbook::test {

void ManualMainThread::post(std::function<void()> work) {
    ready_.push_back(std::move(work));
}

void ManualMainThread::postAfter(std::chrono::nanoseconds delay, std::stop_token stop,
                                 std::function<void()> work) {
    const auto due = now_ + delay;
    const auto later =
        std::find_if(timers_.begin(), timers_.end(), [&](const Timer& each) { return each.due > due; });
    timers_.insert(later, {due, std::move(stop), std::move(work)});
}

void ManualMainThread::collectTimers() {
    std::vector<Timer> waiting;
    for (Timer& each : timers_) {
        if (each.due <= now_ || each.stop.stop_requested()) {
            ready_.push_back(std::move(each.work));
        } else {
            waiting.push_back(std::move(each));
        }
    }
    timers_ = std::move(waiting);
}

bool ManualMainThread::turnOnce() {
    collectTimers();
    if (ready_.empty()) return false;
    const auto work = std::move(ready_.front());
    ready_.pop_front();
    work();
    return true;
}

void ManualMainThread::turn() {
    while (turnOnce()) {
    }
}

void ManualMainThread::advance(std::chrono::nanoseconds time) {
    const auto end = now_ + time;
    turn();
    while (!timers_.empty() && timers_.front().due <= end) {
        now_ = timers_.front().due;
        turn();
    }
    now_ = end;
}

void ManualMainThread::discard() {
    const auto dropped = std::exchange(ready_, {});
    const auto timers = std::exchange(timers_, {});
}

} // namespace quillbook::test
