#pragma once

#include "core/interfaces/CacheRecovering.h"

#include <filesystem>
#include <vector>

namespace quillbook {

/// Looks for missing attachments in the CloudKit caches of Messages, by name and exact size, and copies them
/// into a folder of our own. The contents are not looked at in a search: two files of one name and size count
/// as the same attachment. Holds no state between calls; safe from any thread.
class CloudKitCacheRecoveryService final : public CacheRecovering {
public:
    explicit CloudKitCacheRecoveryService(std::vector<std::filesystem::path> cacheRoots);
    /// The caches below a home folder, in the order in which they are walked.
    static std::vector<std::filesystem::path> below(const std::filesystem::path& home);

    const std::vector<std::filesystem::path>& cacheRoots() const { return cacheRoots_; }

    /// Costs about as much as listing the caches, however many records there are.
    RecoveryReport findRecoverable(const std::vector<MissingAttachmentRecord>& missing) override;
    RecoveryOutcome recover(const std::vector<RecoveryCandidate>& candidates,
                            const std::filesystem::path& recoveryRoot) override;

private:
    const std::vector<std::filesystem::path> cacheRoots_;
};

} // namespace quillbook
