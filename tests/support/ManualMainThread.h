#pragma once

#include "core/interfaces/MainThread.h"

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <stop_token>
#include <vector>

namespace quillbook::test {

/// A main thread that the test turns by hand, with a clock that the test moves. One thread only.
class ManualMainThread final : public MainThread {
public:
    void post(std::function<void()> work) override;
    void postAfter(std::chrono::nanoseconds delay, std::stop_token stop, std::function<void()> work) override;

    /// Runs the oldest posted work; false if there is none.
    bool turnOnce();
    /// Runs all that is due now, and what that work posts.
    void turn();
    /// Moves the clock and turns at every moment on the way at which something is due.
    void advance(std::chrono::nanoseconds time);
    /// Drops the works that wait, and with them what they hold.
    void discard();
    std::size_t posted() const { return ready_.size(); }
    std::size_t delayed() const { return timers_.size(); }

private:
    struct Timer {
        std::chrono::nanoseconds due;
        std::stop_token stop;
        std::function<void()> work;
    };

    void collectTimers();

    std::chrono::nanoseconds now_{0};
    std::deque<std::function<void()>> ready_;
    std::vector<Timer> timers_; ///< By due time.
};

} // namespace quillbook::test
