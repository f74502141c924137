#pragma once

#include <QTimer>
#include <algorithm>
#include <chrono>
#include <vector>

namespace quillbook::bench {

/// How long the event loop of this thread goes without a turn: the times between the ticks of a timer of one
/// millisecond. Whatever keeps the thread, painting included, makes one of them longer.
class TurnWatch {
public:
    using Clock = std::chrono::steady_clock;

    TurnWatch() {
        timer_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { tick(); });
    }

    void start() {
        last_ = Clock::now();
        timer_.start(std::chrono::milliseconds(1));
    }
    void stop() {
        tick();
        timer_.stop();
        std::sort(gaps_.begin(), gaps_.end());
    }

    // Of a watch that was stopped, in milliseconds.
    std::size_t count() const { return gaps_.size(); }
    double longest() const { return gaps_.back(); }
    double percentile(std::size_t hundredths) const { return gaps_[(gaps_.size() - 1) * hundredths / 100]; }

private:
    void tick() {
        const auto now = Clock::now();
        gaps_.push_back(std::chrono::duration<double, std::milli>(now - last_).count());
        last_ = now;
    }

    QTimer timer_;
    Clock::time_point last_;
    std::vector<double> gaps_;
};

} // namespace quillbook::bench
