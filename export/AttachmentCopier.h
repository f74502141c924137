#pragma once

#include "core/records/ArchiveConversation.h"
#include "core/records/DescribedError.h"
#include "export/ArchiveReuseIndex.h"
#include "export/AttachmentNames.h"
#include "platform/FileCloning.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

namespace quillbook {

/// A failure at the album's side that ends the export.
class ExportFileError final : public DescribedError {
public:
    enum class Reason { pathEscapesDestination, destinationWriteFailed };

    ExportFileError(Reason failure, std::string generatedName);
    std::string description() const override;

    Reason reason;
    std::string name; ///< The file name that was generated.
};

/// Makes a copy-on-write clone where nothing stands, or gives false and leaves nothing.
using CloneFunction =
    std::function<bool(const std::filesystem::path& source, const std::filesystem::path& destination)>;

/// Puts the attachments of one export into its album, one at a time. Use from one thread at a time.
class AttachmentCopier {
public:
    explicit AttachmentCopier(CloneFunction clone = cloneFile);

    /// Gives the record with `archivePath`, `sha256` and `availability` settled: the bytes of `source` then
    /// stand in `attachmentsDirectory`, or are missing or unreadable. `reuseIndex` may be null. Throws
    /// ExportFileError, FileError where the folder cannot be made, and CancellationError; no part of the file
    /// is left then.
    ArchiveAttachment copyAttachment(const ArchiveAttachment& attachment, const std::filesystem::path& source,
                                     const std::filesystem::path& attachmentsDirectory,
                                     const ArchiveReuseIndex* reuseIndex, const std::stop_token& stop);

    /// Attachments that were cloned from an earlier album.
    std::int64_t reusedCount() const { return reusedCount_; }

private:
    std::optional<std::string> reuse(const std::filesystem::path& source,
                                     const std::filesystem::path& destination, const ArchiveReuseIndex& index,
                                     const std::stop_token& stop) const;

    CloneFunction clone_;
    AttachmentNames names_;
    std::int64_t reusedCount_ = 0;
};

/// The record of an attachment that is not in the album.
ArchiveAttachment withoutFile(ArchiveAttachment attachment, AttachmentAvailability availability);

} // namespace quillbook
