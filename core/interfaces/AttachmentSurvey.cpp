#include "core/interfaces/AttachmentSurvey.h"

#include "core/interfaces/SaturatingSum.h"
#include "core/text/Localization.h"

namespace quillbook {

std::string storageSummary(std::int64_t local, std::int64_t missing) {
    const std::int64_t total = saturatingSum(local, missing);
    if (total == 0) return localized("This conversation has no attachments.");
    if (missing == 0)
        return localizedFormat("All {} attachments are on this Mac and will be included.", total);
    return localizedFormat(
        "{} of {} attachments are on this Mac. {} are not, because Messages in iCloud keeps them in iCloud "
        "rather than here. Opening the conversation in Messages and scrolling back through it prompts macOS "
        "to download them. An iPhone backup on this Mac is often the fuller source; see How to Get Your "
        "Messages in the Back Up menu.",
        local, total, missing);
}

} // namespace quillbook
