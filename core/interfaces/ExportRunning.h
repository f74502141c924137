#pragma once

#include "core/records/ExportOptions.h"
#include "core/records/ExportProgress.h"
#include "core/records/ExportResult.h"
#include "core/records/SourceID.h"

#include <filesystem>
#include <stop_token>

namespace quillbook {

/// Turns one conversation of a source into one finished album.
class ExportRunning {
public:
    virtual ~ExportRunning() = default;
    /// Makes the album inside `destination`. Blocks; reports through `progress` from its own thread. Throws
    /// what the failing step threw, or CancellationError; the destination then holds no album of this export.
    virtual ExportResult exportConversation(const SourceID& conversationID,
                                            const std::filesystem::path& destination,
                                            const ExportOptions& options, const ProgressCallback& progress,
                                            std::stop_token stop) = 0;
};

} // namespace quillbook
