#pragma once

#include <chrono>
#include <functional>
#include <stop_token>

namespace quillbook {

/// The thread that owns the model. Work that is posted runs there, in the order of posting, never within
/// `post` itself.
class MainThread {
public:
    virtual ~MainThread() = default;
    /// Safe from any thread.
    virtual void post(std::function<void()> work) = 0;
    /// Runs `work` once `delay` has passed on a clock that only goes forward, or soon after `stop` was
    /// requested. Safe from any thread.
    virtual void postAfter(std::chrono::nanoseconds delay, std::stop_token stop,
                           std::function<void()> work) = 0;
};

} // namespace quillbook
