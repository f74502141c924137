#include "tools/runloop/RunLoop.h"

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

} // namespace
} // namespace quillbook::test
