#include "tools/album/Interrupt.h"

#include <csignal>
#include <ctime>

namespace quillbook::tools {
namespace {

/// Whatever asks a program to end: the keyboard, another program, a terminal that closes.
sigset_t endingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    return signals;
}

} // namespace

Interrupt::Interrupt(std::function<void()> interrupted) {
    const sigset_t signals = endingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    waiter_ = std::jthread([interrupted = std::move(interrupted)](const std::stop_token& stop) {
        const sigset_t awaited = endingSignals();
        const timespec interval{.tv_sec = 0, .tv_nsec = 50'000'000};
        while (!stop.stop_requested()) {
            if (sigtimedwait(&awaited, nullptr, &interval) > 0) interrupted();
        }
    });
}

Interrupt::~Interrupt() = default;

} // namespace quillbook::tools
