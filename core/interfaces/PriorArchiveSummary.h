#pragma once

#include "core/text/Date.h"

#include <cstdint>
#include <filesystem>

namespace quillbook {

/// What the newest earlier album of a conversation holds.
struct PriorArchiveSummary {
    std::filesystem::path archiveURL;
    Date archivedAt;
    std::int64_t messageCount = 0;
    std::int64_t sourceMessageCount = 0;

    bool operator==(const PriorArchiveSummary&) const = default;
};

} // namespace quillbook
