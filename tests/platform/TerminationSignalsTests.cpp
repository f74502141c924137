#include "platform/TerminationSignals.h"

#include <csignal>
#include <string>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillbook {
namespace {

/// Runs `work` in a process of its own, since signals belong to the whole of one; gives how it ended.
template <typename Work>
int endOf(Work work) {
    const pid_t child = fork();
    if (child == 0) _exit(work());
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

bool isReadable(int descriptor) {
    pollfd wanted{descriptor, POLLIN, 0};
    return poll(&wanted, 1, 0) == 1;
}

class EachTerminationSignal : public testing::TestWithParam<int> {};

TEST_P(EachTerminationSignal, isWaitedForInsteadOfEndingTheProcess) {
    const int status = endOf([] {
        const TerminationSignals signals;
        if (isReadable(signals.descriptor())) return 1;
        raise(GetParam());
        return isReadable(signals.descriptor()) ? 0 : 2;
    });
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_P(EachTerminationSignal, onceTakenTheNextEndsTheProcess) {
    const int status = endOf([] {
        TerminationSignals signals;
        raise(GetParam());
        signals.take();
        if (isReadable(signals.descriptor())) return 1;
        raise(GetParam());
        return 2;
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), GetParam());
}

TEST_P(EachTerminationSignal, endsTheProgramsThatAreStartedMeanwhile) {
    const int status = endOf([] {
        const TerminationSignals signals;
        const int end = endOf([] {
            execlp("sh", "sh", "-c", ("kill -" + std::to_string(GetParam()) + " $$").c_str(), nullptr);
            return 1;
        });
        if (!WIFSIGNALED(end) || WTERMSIG(end) != GetParam()) return 2;
        raise(GetParam());
        return isReadable(signals.descriptor()) ? 0 : 3;
    });
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

INSTANTIATE_TEST_SUITE_P(All, EachTerminationSignal, testing::Values(SIGTERM, SIGINT, SIGHUP));

} // namespace
} // namespace quillbook
