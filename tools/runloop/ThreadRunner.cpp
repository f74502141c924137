#include "tools/runloop/ThreadRunner.h"

#include <utility>

namespace quillbook {

void ThreadRunner::run(Priority, std::function<void()> work) {
    auto hasEnded = std::make_shared<std::atomic<bool>>(false);
    const std::scoped_lock lock(mutex_);
    workers_.remove_if([](Worker& each) {
        if (!each.hasEnded->load()) return false;
        each.thread.join();
        return true;
    });
    workers_.push_back(
        {hasEnded, std::thread([hasEnded, work = std::move(work)]() mutable {
             work();
             work = nullptr; // What it holds ends in its own thread, before anybody counts it as ended.
             hasEnded->store(true);
         })});
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
