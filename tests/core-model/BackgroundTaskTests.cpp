#include "core/model/BackgroundTask.h"
#include "core/model/SourceTeardown.h"
#include "core/model/TaskSlot.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/ManualRunner.h"
#include "tests/support/ModelFakes.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace quillbook::test {
namespace {

class BackgroundTask : public testing::Test {
protected:
    void run(std::function<int(std::stop_token)> work, std::stop_token stop = {}) {
        runInBackground<int>({runner, mainThread}, BackgroundRunner::Priority::userInitiated, std::move(stop),
                             std::move(work),
                             [this](TaskOutcome<int> result) { outcome = std::move(result); });
        runner->performAll();
        EXPECT_FALSE(outcome.has_value()) << "only on the main thread";
        mainThread->turn();
    }
    TaskFailure failure() const { return std::get<TaskFailure>(outcome.value()); }

    std::shared_ptr<ManualRunner> runner = std::make_shared<ManualRunner>();
    std::shared_ptr<ManualMainThread> mainThread = std::make_shared<ManualMainThread>();
    std::optional<TaskOutcome<int>> outcome;
};

TEST_F(BackgroundTask, valueReachesTheMainThread) {
    run([](std::stop_token) { return 42; });
    EXPECT_EQ(std::get<int>(outcome.value()), 42);
}

TEST_F(BackgroundTask, describedErrorArrivesInItsWords) {
    run([](std::stop_token) -> int { throw SpokenError("No ink."); });
    EXPECT_EQ(failure().words, "No ink.");
    EXPECT_FALSE(failure().isCancellation);
}

TEST_F(BackgroundTask, standardErrorArrivesInItsWords) {
    run([](std::stop_token) -> int { throw std::runtime_error("out of quills"); });
    EXPECT_EQ(failure().words, "out of quills");
}

TEST_F(BackgroundTask, anythingElseThrownHasWordsToo) {
    run([](std::stop_token) -> int { throw "a text"; });
    EXPECT_EQ(failure().words, "An unexpected error occurred.");
}

TEST_F(BackgroundTask, cancellationIsKnownAsSuch) {
    run([](std::stop_token) -> int { throw CancellationError(); });
    EXPECT_TRUE(failure().isCancellation);
}

TEST_F(BackgroundTask, workCancelledBeforeDoesNotBegin) {
    std::stop_source stop;
    stop.request_stop();
    bool began = false;
    run(
        [&](std::stop_token) {
            began = true;
            return 0;
        },
        stop.get_token());
    EXPECT_FALSE(began);
    EXPECT_TRUE(failure().isCancellation);
}

/// Asks a question at the moment of posting.
class WatchedMainThread final : public MainThread {
public:
    void post(std::function<void()>) override { answer = question(); }
    void postAfter(std::chrono::nanoseconds, std::stop_token, std::function<void()>) override {}

    std::function<bool()> question;
    bool answer = false;
};

TEST_F(BackgroundTask, whatTheWorkHoldsIsReleasedBeforeItsAnswerIsPosted) {
    auto held = std::make_shared<int>(1);
    const auto watchedThread = std::make_shared<WatchedMainThread>();
    watchedThread->question = [watched = std::weak_ptr<int>(held)] { return watched.expired(); };
    runInBackground<int>(
        {runner, watchedThread}, BackgroundRunner::Priority::utility, {},
        [held = std::move(held)](std::stop_token) { return *held; }, [](TaskOutcome<int>) {});
    EXPECT_FALSE(watchedThread->question());
    runner->perform();
    EXPECT_TRUE(watchedThread->answer);
}

TEST(TaskSlotTests, newTaskCancelsTheOld) {
    TaskSlot slot;
    const std::stop_token first = slot.begin();
    const std::stop_token second = slot.begin();
    EXPECT_TRUE(first.stop_requested());
    EXPECT_FALSE(second.stop_requested());
    EXPECT_TRUE(slot.holds(second));
    EXPECT_FALSE(slot.holds(first));
}

TEST(TaskSlotTests, cancelledTaskStaysUntilItIsCleared) {
    TaskSlot slot;
    EXPECT_FALSE(slot.isOccupied());
    const std::stop_token token = slot.begin();
    slot.cancel();
    EXPECT_TRUE(token.stop_requested());
    EXPECT_TRUE(slot.isOccupied());
    slot.clear();
    EXPECT_FALSE(slot.isOccupied());
    EXPECT_FALSE(slot.holds(token));
}

TEST(TaskSlotTests, emptySlotHoldsNoTokenAtAll) {
    const TaskSlot slot;
    EXPECT_FALSE(slot.holds(std::stop_token()));
}

TEST(TaskSlotTests, endOfTheSlotCancelsItsTask) {
    std::stop_token token;
    {
        TaskSlot slot;
        token = slot.begin();
    }
    EXPECT_TRUE(token.stop_requested());
}

TEST(SourceTeardownTests, closesOnceWhetherToldOrNot) {
    int told = 0;
    int untold = 0;
    {
        SourceTeardown first([&] { ++told; });
        const SourceTeardown second([&] { ++untold; });
        first.close();
        first.close();
        EXPECT_EQ(told, 1);
        EXPECT_EQ(untold, 0);
    }
    EXPECT_EQ(told, 1);
    EXPECT_EQ(untold, 1);
}

} // namespace
} // namespace quillbook::test
