#include "tools/runloop/RunLoop.h"

#include <algorithm>
#include <utility>

namespace quillbook {

/// One delayed work. Its stop callback waits for the loop's mutex, so a timer must never end while that mutex
/// is held.
struct RunLoop::Timer {
    Timer(RunLoop& owner, Clock::time_point time, std::stop_token token, std::function<void()> delayed)
        : due(time), stop(std::move(token)), work(std::move(delayed)), wake(stop, Wake{&owner}) {}

    struct Wake {
        RunLoop* loop;
        void operator()() const noexcept {
            const std::scoped_lock lock(loop->mutex_);
            loop->hasStoppedTimer_ = true;
            loop->changed_.notify_all();
        }
    };

    const Clock::time_point due;
    const std::stop_token stop;
    std::function<void()> work;
    std::stop_callback<Wake> wake;
};

RunLoop::RunLoop() = default;

RunLoop::~RunLoop() {
    timers_.clear(); // Their callbacks need the mutex, which would end before them.
}

void RunLoop::post(std::function<void()> work) {
    const std::scoped_lock lock(mutex_);
    ready_.push_back(std::move(work));
    changed_.notify_all();
}

void RunLoop::postAfter(std::chrono::nanoseconds delay, std::stop_token stop, std::function<void()> work) {
    auto timer = std::make_unique<Timer>(*this, Clock::now() + delay, std::move(stop), std::move(work));
    const std::scoped_lock lock(mutex_);
    const auto later = std::find_if(timers_.begin(), timers_.end(),
                                    [&](const auto& each) { return each->due > timer->due; });
    timers_.insert(later, std::move(timer));
    changed_.notify_all();
}

/// Moves the timers that are due, or whose task was stopped, into `due`, and their work behind the ready
/// work.
void RunLoop::collectTimers(std::list<std::unique_ptr<Timer>>& due) {
    const Clock::time_point now = Clock::now();
    for (auto each = timers_.begin(); each != timers_.end();) {
        const auto next = std::next(each);
        if ((*each)->due <= now || (*each)->stop.stop_requested()) {
            ready_.push_back(std::move((*each)->work));
            due.splice(due.end(), timers_, each);
        }
        each = next;
    }
    hasStoppedTimer_ = false;
}

std::function<void()> RunLoop::nextDue() {
    std::list<std::unique_ptr<Timer>> ended; // Outlives the lock.
    const std::scoped_lock lock(mutex_);
    collectTimers(ended);
    if (ready_.empty()) return nullptr;
    auto work = std::move(ready_.front());
    ready_.pop_front();
    return work;
}

void RunLoop::waitForWork(Clock::time_point limit) {
    std::unique_lock lock(mutex_);
    const Clock::time_point until = timers_.empty() ? limit : std::min(limit, timers_.front()->due);
    const auto hasWork = [this] { return !ready_.empty() || isStopping_ || hasStoppedTimer_; };
    const std::size_t timers = timers_.size();
    changed_.wait_until(lock, until, [&] { return hasWork() || timers_.size() != timers; });
}

bool RunLoop::takeStop() {
    const std::scoped_lock lock(mutex_);
    return std::exchange(isStopping_, false);
}

bool RunLoop::runUntil(const std::function<bool()>& condition, std::chrono::nanoseconds limit) {
    const Clock::time_point now = Clock::now();
    const auto end = limit < Clock::time_point::max() - now ? now + limit : Clock::time_point::max();
    while (!condition()) {
        if (takeStop() || Clock::now() >= end) return false;
        if (const auto work = nextDue()) {
            work();
        } else {
            waitForWork(end);
        }
    }
    return true;
}

void RunLoop::run() {
    runUntil([] { return false; }, std::chrono::nanoseconds::max());
}

void RunLoop::runPending() {
    while (const auto work = nextDue())
        work();
}

void RunLoop::stop() {
    const std::scoped_lock lock(mutex_);
    isStopping_ = true;
    changed_.notify_all();
}

} // namespace quillbook
