#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace quillbook {

enum class ExportStage { preparing, readingMessages, copyingAttachments, writingArchive, finalizing };

/// What the user calls the stage.
std::string title(ExportStage stage);

/// One report from a running export.
struct ExportProgress {
    ExportStage stage = ExportStage::preparing;
    std::int64_t completed = 0; ///< Steps done within the stage.
    std::int64_t total = 1;     ///< Steps of the stage.
    std::string detail;         ///< One line for the user.

    /// The whole export's progress, 0 to 1. Each stage owns a fixed slice, which no report can leave.
    double fractionCompleted() const;

    bool operator==(const ExportProgress&) const = default;
};

/// Takes reports; may be called from any thread.
using ProgressCallback = std::function<void(const ExportProgress&)>;

} // namespace quillbook
