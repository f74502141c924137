#pragma once

#include <functional>
#include <thread>

namespace quillbook::tools {

/// Calls `interrupted` on a thread of its own for each SIGINT, SIGTERM and SIGHUP. Make it before any other
/// thread, since threads inherit which signals they take.
class Interrupt {
public:
    explicit Interrupt(std::function<void()> interrupted);
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

private:
    std::jthread waiter_;
};

} // namespace quillbook::tools
