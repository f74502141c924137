#include "tools/runloop/RunLoop.h"
#include "tools/runloop/ThreadRunner.h"

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace quillbook::test {
namespace {

using namespace std::chrono_literals;

constexpr auto never = 1h;
constexpr auto patience = 20s;

TEST(RunLoopTests, postedWorkRunsInOrderAndNotWithinPost) {
    RunLoop loop;
    std::string order;
    loop.post([&] {
        loop.post([&] { order += "c"; });
        order += "a";
    });
    loop.post([&] { order += "b"; });
    EXPECT_EQ(order, "");
    loop.runPending();
    EXPECT_EQ(order, "abc");
}

TEST(RunLoopTests, delayedWorkRunsAfterItsDelayAndNotBefore) {
    RunLoop loop;
    const auto begin = std::chrono::steady_clock::now();
    bool ran = false;
    loop.postAfter(3ms, {}, [&] { ran = true; });
    loop.runPending();
    EXPECT_TRUE(!ran || std::chrono::steady_clock::now() - begin >= 3ms);
    EXPECT_TRUE(loop.runUntil([&] { return ran; }, patience));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 3ms);
}

TEST(RunLoopTests, delayedWorksRunByTheirTimes) {
    RunLoop loop;
    std::string order;
    loop.postAfter(4ms, {}, [&] { order += "c"; });
    loop.postAfter(1ms, {}, [&] { order += "a"; });
    loop.postAfter(1ms, {}, [&] { order += "b"; });
    EXPECT_TRUE(loop.runUntil([&] { return order.size() == 3; }, patience));
    EXPECT_EQ(order, "abc");
}

TEST(RunLoopTests, stoppedDelayEndsSoon) {
    RunLoop loop;
    std::stop_source stop;
    bool ran = false;
    loop.postAfter(never, stop.get_token(), [&] { ran = true; });
    std::thread other([&] { stop.request_stop(); });
    EXPECT_TRUE(loop.runUntil([&] { return ran; }, patience));
    other.join();
}

TEST(RunLoopTests, delayStoppedBeforeItBeganEndsSoon) {
    RunLoop loop;
    std::stop_source stop;
    stop.request_stop();
    bool ran = false;
    loop.postAfter(never, stop.get_token(), [&] { ran = true; });
    loop.runPending();
    EXPECT_TRUE(ran);
}

TEST(RunLoopTests, limitEndsTheWait) {
    RunLoop loop;
    EXPECT_FALSE(loop.runUntil([] { return false; }, 1ms));
}

TEST(RunLoopTests, stopEndsTheRunFromAnotherThread) {
    RunLoop loop;
    std::thread other([&] { loop.stop(); });
    loop.run();
    other.join();
}

TEST(RunLoopTests, workMayStopATimerThatHoldsTheLastOfItsTask) {
    RunLoop loop;
    auto stop = std::make_shared<std::stop_source>();
    loop.postAfter(never, stop->get_token(), [held = std::make_shared<int>(0)] { ++*held; });
    loop.post([&stop] {
        stop->request_stop();
        stop.reset();
    });
    loop.runPending();
    EXPECT_EQ(stop, nullptr);
}

TEST(RunLoopTests, loopMayEndWithWorkWaiting) {
    const auto held = std::make_shared<int>(0);
    {
        RunLoop loop;
        std::stop_source stop;
        loop.post([held] { ++*held; });
        loop.postAfter(never, stop.get_token(), [held] { ++*held; });
    }
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(*held, 0);
}

TEST(RunLoopTests, workFromManyThreadsAllRuns) {
    RunLoop loop;
    int ran = 0;
    std::vector<std::thread> threads;
    for (int each = 0; each < 4; ++each) {
        threads.emplace_back([&loop, &ran] {
            for (int work = 0; work < 50; ++work)
                loop.post([&ran] { ++ran; });
        });
    }
    EXPECT_TRUE(loop.runUntil([&] { return ran == 200; }, patience));
    for (auto& each : threads)
        each.join();
}

TEST(ThreadRunnerTests, worksRunSideBySide) {
    std::atomic<int> arrived = 0;
    {
        ThreadRunner runner;
        for (int each = 0; each < 2; ++each) {
            runner.run(BackgroundRunner::Priority::utility, [&] {
                ++arrived; // Each waits for the other: in a row they would wait for ever.
                while (arrived < 2)
                    std::this_thread::yield();
            });
        }
    }
    EXPECT_EQ(arrived, 2);
}

TEST(ThreadRunnerTests, mayEndInItsOwnThread) {
    std::atomic<bool> ended = false;
    auto runner = std::make_shared<ThreadRunner>();
    std::atomic<bool> released = false;
    ThreadRunner& used = *runner;
    used.run(BackgroundRunner::Priority::userInitiated, [held = runner, &released, &ended]() mutable {
        while (!released)
            std::this_thread::yield();
        held.reset();
        ended = true;
    });
    runner.reset();
    released = true;
    while (!ended)
        std::this_thread::yield();
    EXPECT_TRUE(ended);
}

} // namespace
} // namespace quillbook::test
