#pragma once

#include "core/interfaces/BackgroundRunner.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace quillbook::test {

/// Background work that waits until the test runs it, in any order. One thread only.
class ManualRunner final : public BackgroundRunner {
public:
    void run(Priority priority, std::function<void()> work) override;

    /// Runs one of the works that wait, 0 being the oldest, and takes it away.
    void perform(std::size_t index = 0);
    void performAll();
    /// Drops the works that wait, and with them what they hold.
    void discard();
    std::size_t waiting() const { return works_.size(); }

private:
    std::vector<std::function<void()>> works_;
};

} // namespace quillbook::test
