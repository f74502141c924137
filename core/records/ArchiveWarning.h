#pragma once

#include "core/records/SourceID.h"

#include <optional>
#include <string>

namespace quillbook {

struct ArchiveAttachment;

/// One thing an album must say about itself.
struct ArchiveWarning {
    std::string id;                   ///< Unique within the conversation.
    std::string code;                 ///< Machine word, as in "attachment_missing".
    std::string summary;              ///< English text stored with the warning; files carry this one.
    std::optional<SourceID> sourceID; ///< The message or attachment it speaks of.

    /// The text a screen shows: fixed words for the four known codes, the stored summary for any other.
    std::string localizedSummary() const;

    bool operator==(const ArchiveWarning&) const = default;
};

/// The warning for an attachment that is not in the album, after its final `availability`.
ArchiveWarning attachmentWarning(const ArchiveAttachment& attachment);

} // namespace quillbook
