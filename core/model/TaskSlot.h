#pragma once

#include <stop_token>

namespace quillbook {

/// The place of one kind of task: at most one is live in it. The slot's end cancels its task. Main thread
/// only; the tokens go anywhere.
class TaskSlot {
public:
    TaskSlot() = default;
    ~TaskSlot() { cancel(); }
    TaskSlot(const TaskSlot&) = delete;
    TaskSlot& operator=(const TaskSlot&) = delete;

    /// Cancels the old task and gives the new one's token.
    std::stop_token begin() {
        cancel();
        stop_ = std::stop_source();
        return stop_.get_token();
    }
    /// Asks the task to stop. It stays in the slot until it ends or another takes its place.
    void cancel() { stop_.request_stop(); }
    /// The task is over.
    void clear() { stop_ = std::stop_source(std::nostopstate); }

    bool isOccupied() const { return stop_.stop_possible(); }
    /// Whether the task that got this token is the one in the slot.
    bool holds(const std::stop_token& token) const { return isOccupied() && stop_.get_token() == token; }

private:
    std::stop_source stop_{std::nostopstate};
};

} // namespace quillbook
