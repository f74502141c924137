#pragma once

#include "core/interfaces/MainThread.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <stop_token>

namespace quillbook {

/// A main thread on a real clock: the thread that runs one of the `run` operations is it for that time. One
/// thread at a time.
class RunLoop final : public MainThread {
public:
    RunLoop();
    /// Work that is still waiting is discarded.
    ~RunLoop() override;
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    void post(std::function<void()> work) override;
    void postAfter(std::chrono::nanoseconds delay, std::stop_token stop, std::function<void()> work) override;

    /// Runs work until `stop` is called.
    void run();
    /// Runs work until `condition` holds, which is asked before the first work and after each; false if
    /// `limit` passed or `stop` was called before.
    bool runUntil(const std::function<bool()>& condition, std::chrono::nanoseconds limit);
    /// Runs what is due, and what that work posts, and does not wait.
    void runPending();
    /// Ends the running `run` or `runUntil`, or the next. Safe from any thread.
    void stop();

private:
    using Clock = std::chrono::steady_clock;
    struct Timer;

    std::function<void()> nextDue();
    void collectTimers(std::list<std::unique_ptr<Timer>>& due);
    void waitForWork(Clock::time_point limit);
    bool takeStop();

    std::mutex mutex_; ///< Guards all below. Never held while work runs or a timer ends.
    std::condition_variable changed_;
    std::deque<std::function<void()>> ready_;
    std::list<std::unique_ptr<Timer>> timers_; ///< By due time; equal ones in the order of posting.
    bool isStopping_ = false;
    bool hasStoppedTimer_ = false;
};

} // namespace quillbook
