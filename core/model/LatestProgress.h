#pragma once

#include "core/records/ExportProgress.h"

#include <mutex>
#include <optional>
#include <utility>

namespace quillbook {

/// The newest report on its way to the main thread. Reports that come while one waits replace it, so however
/// fast an export goes, one is waiting at most. Safe to call from any thread.
class LatestProgress {
public:
    /// Whether somebody has to be sent for it; else one is under way.
    bool put(ExportProgress progress) {
        const std::scoped_lock lock(mutex_);
        return !std::exchange(waiting_, std::move(progress)).has_value();
    }
    std::optional<ExportProgress> take() {
        const std::scoped_lock lock(mutex_);
        return std::exchange(waiting_, std::nullopt);
    }

private:
    std::mutex mutex_;
    std::optional<ExportProgress> waiting_;
};

} // namespace quillbook
