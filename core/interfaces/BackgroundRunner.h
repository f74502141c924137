#pragma once

#include <functional>

namespace quillbook {

/// Runs slow work off the main thread. Works run side by side: none waits for another to end.
class BackgroundRunner {
public:
    enum class Priority { userInitiated, utility };

    virtual ~BackgroundRunner() = default;
    /// Safe from any thread. `work` must not throw.
    virtual void run(Priority priority, std::function<void()> work) = 0;
};

} // namespace quillbook
