#pragma once

#include "core/records/ArchiveWarning.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace quillbook {

/// What a finished export delivers.
struct ExportResult {
    std::filesystem::path archiveURL; ///< The finished album folder.
    std::int64_t messageCount = 0;
    std::int64_t attachmentCount = 0;       ///< Attachments really present in the album.
    std::int64_t attachmentRecordCount = 0; ///< Attachment records of all messages, present or not.
    std::vector<ArchiveWarning> warnings;
    std::int64_t reusedAttachmentCount =
        0; ///< Attachments taken from an earlier album instead of the source.
    std::vector<std::filesystem::path> photoPreviewURLs; ///< Up to five pictures inside the album.

    bool operator==(const ExportResult&) const = default;
};

} // namespace quillbook
