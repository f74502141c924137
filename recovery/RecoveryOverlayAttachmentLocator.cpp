#include "recovery/RecoveryOverlayAttachmentLocator.h"

#include "platform/FileResidency.h"
#include "recovery/RecoveryFolder.h"
#include "store/AttachmentPaths.h"

#include <utility>

namespace quillbook {

namespace fs = std::filesystem;

RecoveryOverlayAttachmentLocator::RecoveryOverlayAttachmentLocator(
    std::shared_ptr<AttachmentLocating> primary, fs::path recoveryRoot)
    : primary_(std::move(primary)), recoveryRoot_(std::move(recoveryRoot)) {}

std::optional<fs::path> RecoveryOverlayAttachmentLocator::locate(const std::string& storedPath) {
    if (auto file = primary_->locate(storedPath)) {
        if (isLocallyPresent(*file)) return file;
        primary_->release(*file); // Nobody else learns of it.
    }
    return recovered(storedPath);
}

std::optional<fs::path> RecoveryOverlayAttachmentLocator::recovered(const std::string& storedPath) const {
    const auto relative = normalizedMessagesPath(storedPath);
    if (!relative) return std::nullopt;
    auto file = recoveryPlace(recoveryRoot_, *relative);
    std::error_code failure;
    if (!file || !fs::is_regular_file(*file, failure) || !isLocallyPresent(*file)) return std::nullopt;
    return file;
}

void RecoveryOverlayAttachmentLocator::release(const fs::path& file) {
    if (!isInsideFolder(recoveryRoot_, file)) primary_->release(file);
}

} // namespace quillbook
