#include "platform/linux/GLibDeadline.h"

namespace quillbook {

GLibDeadline::GLibDeadline(std::chrono::milliseconds time)
    : cancellable_(g_cancellable_new()),
      thread_([this, end = std::chrono::steady_clock::now() + time] { wait(end); }) {}

GLibDeadline::~GLibDeadline() {
    {
        const std::scoped_lock lock(mutex_);
        isOver_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void GLibDeadline::wait(std::chrono::steady_clock::time_point end) {
    std::unique_lock lock(mutex_);
    if (changed_.wait_until(lock, end, [this] { return isOver_; })) return;
    lock.unlock();
    g_cancellable_cancel(cancellable_.get());
}

} // namespace quillbook
