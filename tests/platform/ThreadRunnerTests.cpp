#include "platform/ThreadRunner.h"

#include <atomic>
#include <memory>
#include <thread>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

namespace quillbook {
namespace {

using Priority = BackgroundRunner::Priority;

/// How politely work of that priority runs.
int nicenessOf(Priority priority) {
    std::atomic<int> niceness = -100;
    {
        ThreadRunner runner;
        runner.run(priority, [&] { niceness = ::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid())); });
    }
    return niceness;
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

TEST(ThreadRunnerTests, isIdleOnceEveryWorkHasEnded) {
    ThreadRunner runner;
    EXPECT_TRUE(runner.waitUntilIdle(std::chrono::milliseconds(0)));
    std::atomic<bool> released = false;
    const auto held = std::make_shared<int>(7);
    runner.run(Priority::userInitiated, [&released, held] {
        while (!released)
            std::this_thread::yield();
    });
    EXPECT_FALSE(runner.waitUntilIdle(std::chrono::milliseconds(10)));
    released = true;
    EXPECT_TRUE(runner.waitUntilIdle(std::chrono::minutes(1)));
    EXPECT_EQ(held.use_count(), 1) << "what the work held is gone";
}

TEST(ThreadRunnerTests, utilityWorkYieldsToAllOther) {
    const int own = ::getpriority(PRIO_PROCESS, 0);
    EXPECT_EQ(nicenessOf(Priority::userInitiated), own);
    EXPECT_GT(nicenessOf(Priority::utility), own);
    EXPECT_EQ(::getpriority(PRIO_PROCESS, 0), own);
}

TEST(ThreadRunnerTests, utilityWorkIsScheduledAsABatch) {
    std::atomic<int> policy = -1;
    {
        ThreadRunner runner;
        runner.run(Priority::utility, [&] { policy = ::sched_getscheduler(0); });
    }
    EXPECT_EQ(policy, SCHED_BATCH);
    EXPECT_EQ(::sched_getscheduler(0), SCHED_OTHER);
}

} // namespace
} // namespace quillbook
