#include "core/records/Cancellation.h"

namespace quillbook {

const char* CancellationError::what() const noexcept {
    return "Cancelled.";
}

void throwIfCancelled(const std::stop_token& stop) {
    if (stop.stop_requested()) throw CancellationError();
}

} // namespace quillbook
