#include "platform/ThreadRunner.h"

#include <algorithm>
#include <utility>

#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

namespace quillbook {
namespace {

/// Of the calling thread alone, as Linux has it. Where it fails, the work runs like any other.
void lowerSchedulingPriority() {
    constexpr int politeness = 10;
    const sched_param unused{};
    ::sched_setscheduler(0, SCHED_BATCH, &unused);
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), politeness);
}

} // namespace

void ThreadRunner::run(Priority priority, std::function<void()> work) {
    auto hasEnded = std::make_shared<std::atomic<bool>>(false);
    const std::scoped_lock lock(mutex_);
    workers_.remove_if([](Worker& each) {
        if (!each.hasEnded->load()) return false;
        each.thread.join();
        return true;
    });
    workers_.push_back(
        {hasEnded, std::thread([hasEnded, priority, work = std::move(work)]() mutable {
             if (priority == Priority::utility) lowerSchedulingPriority();
             work();
             work = nullptr; // What it holds ends in its own thread, before anybody counts it as ended.
             hasEnded->store(true);
         })});
}

bool ThreadRunner::isIdle() {
    const std::scoped_lock lock(mutex_);
    return std::all_of(workers_.begin(), workers_.end(),
                       [](const Worker& each) { return each.hasEnded->load(); });
}

bool ThreadRunner::waitUntilIdle(std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!isIdle()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

ThreadRunner::~ThreadRunner() {
    for (Worker& each : workers_) {
        if (each.thread.get_id() == std::this_thread::get_id()) {
            each.thread.detach();
        } else {
            each.thread.join();
        }
    }
}

} // namespace quillbook
