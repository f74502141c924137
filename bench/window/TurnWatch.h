#pragma once

#include <QTimer>
#include <algorithm>
#include <chrono>
#include <ctime>
#include <numeric>
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
        lastWork_ = work();
        timer_.start(std::chrono::milliseconds(1));
    }
    void stop() {
        tick();
        timer_.stop();
        const auto longest = std::max_element(gaps_.begin(), gaps_.end());
        longestAt_ = std::accumulate(gaps_.begin(), longest, 0.0);
        std::sort(gaps_.begin(), gaps_.end());
    }

    // Of a watch that was stopped, in milliseconds.
    std::size_t count() const { return gaps_.size(); }
    double longest() const { return gaps_.back(); }
    double longestAt() const { return longestAt_; } ///< When it began.
    /// The most that the thread itself did between two turns; the rest of a long one it waited for others.
    double mostWork() const { return mostWork_; }
    double percentile(std::size_t hundredths) const { return gaps_[(gaps_.size() - 1) * hundredths / 100]; }

private:
    void tick() {
        const auto now = Clock::now();
        gaps_.push_back(std::chrono::duration<double, std::milli>(now - last_).count());
        last_ = now;
        const double done = work();
        mostWork_ = std::max(mostWork_, done - lastWork_);
        lastWork_ = done;
    }
    /// The thread's time on a processor.
    static double work() {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    }

    QTimer timer_;
    Clock::time_point last_;
    std::vector<double> gaps_;
    double longestAt_ = 0;
    double lastWork_ = 0;
    double mostWork_ = 0;
};

} // namespace quillbook::bench
