#include "tests/support/ManualRunner.h"

#include <stdexcept>
#include <utility>

namespace quillbook::test {

void ManualRunner::run(Priority, std::function<void()> work) {
    works_.push_back(std::move(work));
}

void ManualRunner::perform(std::size_t index) {
    if (index >= works_.size()) throw std::out_of_range("no background work waits at this place");
    const auto work = std::move(works_[index]);
    works_.erase(works_.begin() + static_cast<std::ptrdiff_t>(index));
    work();
}

void ManualRunner::performAll() {
    while (!works_.empty())
        perform();
}

void ManualRunner::discard() {
    const auto dropped = std::exchange(works_, {});
}

} // namespace quillbook::test
