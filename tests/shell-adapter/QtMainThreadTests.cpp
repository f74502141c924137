#include "shell/adapter/QtMainThread.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QThread>
#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

using namespace std::chrono_literals;

/// Turns the event loop until `done`, for 20 seconds at most.
template <typename Done>
bool turnUntil(Done done) {
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < 20'000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return done();
}

void turnOnce() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

class QtMainThreadTest : public testing::Test {
protected:
    std::unique_ptr<QtMainThread> thread = std::make_unique<QtMainThread>();
    std::vector<int> order;
};

TEST_F(QtMainThreadTest, runsNothingWithinThePosting) {
    thread->post([this] { order.push_back(1); });
    EXPECT_TRUE(order.empty());
    turnOnce();
    EXPECT_EQ(order, std::vector{1});
}

TEST_F(QtMainThreadTest, runsInTheOrderOfPosting) {
    std::vector<int> expected;
    for (int each = 0; each < 100; ++each) {
        thread->post([this, each] { order.push_back(each); });
        expected.push_back(each);
    }
    turnOnce();
    EXPECT_EQ(order, expected);
}

TEST_F(QtMainThreadTest, runsWhatWorkPostsBehindWhatWaits) {
    thread->post([this] {
        order.push_back(1);
        thread->post([this] { order.push_back(3); });
    });
    thread->post([this] { order.push_back(2); });
    EXPECT_TRUE(turnUntil([this] { return order.size() == 3; }));
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST_F(QtMainThreadTest, takesWorkFromManyThreadsAndRunsItOnItsOwn) {
    std::vector<std::thread> others;
    std::atomic<int> elsewhere = 0;
    int ran = 0; // On the main thread alone.
    for (int each = 0; each < 4; ++each)
        others.emplace_back([&, main = QThread::currentThread()] {
            for (int work = 0; work < 500; ++work)
                thread->post([&, main] {
                    ++ran;
                    if (QThread::currentThread() != main) ++elsewhere;
                });
        });
    for (auto& each : others)
        each.join();
    EXPECT_TRUE(turnUntil([&] { return ran == 2'000; }));
    EXPECT_EQ(elsewhere, 0);
}

TEST_F(QtMainThreadTest, keepsTheOrderOfEachThread) {
    std::thread other([this] {
        for (int each = 0; each < 300; ++each)
            thread->post([this, each] { order.push_back(each); });
    });
    other.join();
    ASSERT_TRUE(turnUntil([this] { return order.size() == 300; }));
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST_F(QtMainThreadTest, waitsForTheTime) {
    QElapsedTimer clock;
    clock.start();
    thread->postAfter(50ms, {}, [this] { order.push_back(1); });
    ASSERT_TRUE(turnUntil([this] { return !order.empty(); }));
    EXPECT_GE(clock.elapsed(), 50);
}

TEST_F(QtMainThreadTest, waitsNoLessThanAPartOfAMillisecond) {
    QElapsedTimer clock;
    clock.start();
    thread->postAfter(10'000'001ns, {}, [this] { order.push_back(1); });
    ASSERT_TRUE(turnUntil([this] { return !order.empty(); }));
    EXPECT_GT(clock.nsecsElapsed(), 10'000'000);
}

TEST_F(QtMainThreadTest, runsLaterWorkByItsTime) {
    thread->postAfter(60ms, {}, [this] { order.push_back(2); });
    thread->postAfter(10ms, {}, [this] { order.push_back(1); });
    ASSERT_TRUE(turnUntil([this] { return order.size() == 2; }));
    EXPECT_EQ(order, (std::vector{1, 2}));
}

TEST_F(QtMainThreadTest, runsWithoutADelayInALaterTurn) {
    thread->postAfter(0ns, {}, [this] { order.push_back(1); });
    EXPECT_TRUE(order.empty());
    EXPECT_TRUE(turnUntil([this] { return order.size() == 1; }));
}

TEST_F(QtMainThreadTest, runsSoonAfterTheStop) {
    std::stop_source stop;
    thread->postAfter(1h, stop.get_token(), [this] { order.push_back(1); });
    turnOnce();
    EXPECT_TRUE(order.empty());
    stop.request_stop();
    EXPECT_TRUE(order.empty()) << "never within the stop";
    EXPECT_TRUE(turnUntil([this] { return !order.empty(); }));
}

TEST_F(QtMainThreadTest, runsSoonWhereTheStopCameBefore) {
    std::stop_source stop;
    stop.request_stop();
    thread->postAfter(1h, stop.get_token(), [this] { order.push_back(1); });
    EXPECT_TRUE(turnUntil([this] { return !order.empty(); }));
}

TEST_F(QtMainThreadTest, runsOnceWhereTimeAndStopMeet) {
    std::stop_source stop;
    thread->postAfter(1ms, stop.get_token(), [this] { order.push_back(1); });
    turnOnce();
    QThread::msleep(5); // Now the timer is due as well.
    stop.request_stop();
    thread->post([this] { order.push_back(2); });
    ASSERT_TRUE(turnUntil([this] { return order.size() >= 2; }));
    turnOnce();
    EXPECT_EQ(std::count(order.begin(), order.end(), 1), 1);
}

TEST_F(QtMainThreadTest, takesAStopFromAnotherThread) {
    std::stop_source stop;
    std::atomic<bool> isMain = false;
    thread->postAfter(1h, stop.get_token(), [&, main = QThread::currentThread()] {
        isMain = QThread::currentThread() == main;
        order.push_back(1);
    });
    turnOnce();
    std::thread other([&stop] { stop.request_stop(); });
    EXPECT_TRUE(turnUntil([this] { return !order.empty(); }));
    other.join();
    EXPECT_TRUE(isMain);
}

TEST_F(QtMainThreadTest, freesTheWorkThatRan) {
    auto held = std::make_shared<int>();
    thread->postAfter(0ns, {}, [held, this] { order.push_back(*held); });
    ASSERT_TRUE(turnUntil([this] { return !order.empty(); }));
    turnOnce();
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_TRUE(thread->children().isEmpty());
}

TEST_F(QtMainThreadTest, dropsWhatWaitsAtItsEnd) {
    auto held = std::make_shared<int>();
    std::stop_source stop;
    thread->postAfter(1h, stop.get_token(), [held, this] { order.push_back(1); });
    turnOnce();
    thread->post([held, this] { order.push_back(2); });
    thread->postAfter(1h, stop.get_token(), [held, this] { order.push_back(3); });
    thread.reset();
    stop.request_stop();
    turnOnce();
    EXPECT_TRUE(order.empty());
    EXPECT_EQ(held.use_count(), 1);
}

} // namespace
} // namespace quillbook
