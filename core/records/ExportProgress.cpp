#include "core/records/ExportProgress.h"

#include "core/text/Localization.h"

#include <algorithm>

namespace quillbook {
namespace {

struct Slice {
    double base = 0;
    double weight = 0;
    double end = 0; ///< The next slice's base: base and weight can add up to a little more.
};

Slice slice(ExportStage stage) {
    switch (stage) {
    case ExportStage::preparing:
        return {0.00, 0.02, 0.02};
    case ExportStage::readingMessages:
        return {0.02, 0.03, 0.05};
    case ExportStage::copyingAttachments:
        return {0.05, 0.80, 0.85};
    case ExportStage::writingArchive:
        return {0.85, 0.10, 0.95};
    case ExportStage::finalizing:
        return {0.95, 0.05, 1.00};
    }
    return {};
}

} // namespace

std::string title(ExportStage stage) {
    switch (stage) {
    case ExportStage::preparing:
        return localized("Preparing");
    case ExportStage::readingMessages:
        return localized("Reading messages");
    case ExportStage::copyingAttachments:
        return localized("Copying attachments");
    case ExportStage::writingArchive:
        return localized("Writing archive");
    case ExportStage::finalizing:
        return localized("Finalizing");
    }
    return {};
}

double ExportProgress::fractionCompleted() const {
    double done = 0;
    if (total >= 1) done = std::clamp(static_cast<double>(completed) / static_cast<double>(total), 0.0, 1.0);
    const Slice own = slice(stage);
    return std::min(own.end, own.base + done * own.weight);
}

} // namespace quillbook
