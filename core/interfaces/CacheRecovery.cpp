#include "core/interfaces/CacheRecovery.h"

#include "core/interfaces/SaturatingSum.h"
#include "core/text/ByteCountText.h"
#include "core/text/Localization.h"

namespace quillbook {

std::string RecoveryReport::summary() const {
    if (candidates.empty())
        return localized("No recoverable copies were found in this Mac's Messages caches.");
    std::int64_t bytes = 0;
    for (const RecoveryCandidate& candidate : candidates)
        bytes = saturatingSum(bytes, candidate.bytes);
    return localizedFormat("{} attachments ({}) can be recovered from this Mac's Messages caches.",
                           candidates.size(), ByteCountText::user().fileSize(bytes));
}

} // namespace quillbook
