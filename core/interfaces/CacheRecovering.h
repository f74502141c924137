#pragma once

#include "core/interfaces/CacheRecovery.h"

#include <filesystem>
#include <vector>

namespace quillbook {

/// Finds copies of missing attachments in the local caches and brings them back. Neither operation fails or
/// can be cancelled; both may be slow and are called off the main thread.
class CacheRecovering {
public:
    virtual ~CacheRecovering() = default;
    /// Reads the caches alone; copies nothing.
    virtual RecoveryReport findRecoverable(const std::vector<MissingAttachmentRecord>& missing) = 0;
    /// Copies the candidates below `recoveryRoot`; each failure is counted.
    virtual RecoveryOutcome recover(const std::vector<RecoveryCandidate>& candidates,
                                    const std::filesystem::path& recoveryRoot) = 0;
};

} // namespace quillbook
