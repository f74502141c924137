#include "tools/album/Interrupt.h"

#include <csignal>
#include <ctime>

namespace quillbook::tools {
namespace {

sigset_t interruptSignal() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    return signals;
}

} // namespace

Interrupt::Interrupt(std::function<void()> interrupted) {
    const sigset_t signals = interruptSignal();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    waiter_ = std::jthread([interrupted = std::move(interrupted)](const std::stop_token& stop) {
        const sigset_t awaited = interruptSignal();
        const timespec interval{.tv_sec = 0, .tv_nsec = 50'000'000};
        while (!stop.stop_requested()) {
            if (sigtimedwait(&awaited, nullptr, &interval) == SIGINT) interrupted();
        }
    });
}

Interrupt::~Interrupt() = default;

} // namespace quillbook::tools
