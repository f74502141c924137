#pragma once

#include "platform/linux/GLibPointers.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace quillbook {

/// Cancels the calls that it was given to once its time is over. Needs no main loop.
class GLibDeadline {
public:
    explicit GLibDeadline(std::chrono::milliseconds time);
    ~GLibDeadline();
    GLibDeadline(const GLibDeadline&) = delete;
    GLibDeadline& operator=(const GLibDeadline&) = delete;

    GCancellable* cancellable() const { return cancellable_.get(); }
    bool hasPassed() const { return g_cancellable_is_cancelled(cancellable_.get()) != FALSE; }

private:
    void wait(std::chrono::steady_clock::time_point end);

    const GObjectPointer<GCancellable> cancellable_;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool isOver_ = false;
    std::thread thread_;
};

} // namespace quillbook
