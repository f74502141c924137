#include "core/records/ArchiveWarning.h"

#include "core/records/ArchiveConversation.h"
#include "core/records/EnumWords.h"
#include "core/text/Localization.h"

namespace quillbook {

std::string ArchiveWarning::localizedSummary() const {
    if (code == "unresolved_reaction") return localized("A reaction could not be matched to its message.");
    if (code == "unsupported_payload") return localized("A message payload could not be fully decoded.");
    if (code == "attachment_missing")
        return localized("An attachment was missing and could not be included.");
    if (code == "attachment_unreadable") return localized("An attachment could not be read and was skipped.");
    return summary;
}

ArchiveWarning attachmentWarning(const ArchiveAttachment& attachment) {
    const std::string state(rawValue(attachment.availability));
    return ArchiveWarning{
        .id = "attachment-" + state + "-" + attachment.id.rawValue,
        .code = "attachment_" + state,
        .summary = "Attachment " + attachment.displayName + " was " + state + ".",
        .sourceID = attachment.id,
    };
}

} // namespace quillbook
