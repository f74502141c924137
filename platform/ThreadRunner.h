#pragma once

#include "core/interfaces/BackgroundRunner.h"

#include <atomic>
#include <chrono>
#include <list>
#include <memory>
#include <mutex>
#include <thread>

namespace quillbook {

/// A thread for each work. Work of utility priority yields to all other where the system allows it.
class ThreadRunner final : public BackgroundRunner {
public:
    ThreadRunner() = default;
    /// Waits for every work to end; not for the one in whose thread it runs, if it runs in one.
    ~ThreadRunner() override;
    ThreadRunner(const ThreadRunner&) = delete;
    ThreadRunner& operator=(const ThreadRunner&) = delete;

    void run(Priority priority, std::function<void()> work) override;
    /// Waits until every work has ended, and what it held is gone; false if `limit` passed before. Not for a
    /// work's own thread.
    bool waitUntilIdle(std::chrono::milliseconds limit);

private:
    struct Worker {
        std::shared_ptr<std::atomic<bool>> hasEnded;
        std::thread thread;
    };

    bool isIdle();

    std::mutex mutex_;
    std::list<Worker> workers_;
};

} // namespace quillbook
