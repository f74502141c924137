#include "platform/TerminationSignals.h"

#include <csignal>
#include <initializer_list>

#include <pthread.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace quillbook {
namespace {

sigset_t terminationSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int each : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, each);
    return signals;
}

void unblock() {
    const sigset_t signals = terminationSignals();
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

/// A mask goes on to children and through exec(2): a program that a library starts could not be ended.
void unblockInChildren() {
    [[maybe_unused]] static const int registered = pthread_atfork(nullptr, nullptr, unblock);
}

} // namespace

TerminationSignals::TerminationSignals() {
    const sigset_t signals = terminationSignals();
    descriptor_ = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    // Threads made later inherit the mask; one with the signals open would be ended by them.
    if (descriptor_ < 0) return;
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    unblockInChildren();
}

TerminationSignals::~TerminationSignals() {
    if (descriptor_ >= 0) close(descriptor_);
}

void TerminationSignals::take() {
    signalfd_siginfo information;
    while (read(descriptor_, &information, sizeof information) > 0) {
    }
    unblock();
}

} // namespace quillbook
