#pragma once

#include "core/interfaces/AttachmentLocating.h"

#include <filesystem>
#include <memory>

namespace quillbook {

/// Another locator whose missing files are looked for among the recovered ones. A file that is really in the
/// library always wins. Holds no state; as safe for threads as the locator it wraps.
class RecoveryOverlayAttachmentLocator final : public AttachmentLocating {
public:
    RecoveryOverlayAttachmentLocator(std::shared_ptr<AttachmentLocating> primary,
                                     std::filesystem::path recoveryRoot);

    std::optional<std::filesystem::path> locate(const std::string& storedPath) override;
    /// The wrapped locator hears of its own files only; a recovered one stays as it is.
    void release(const std::filesystem::path& file) override;

private:
    std::optional<std::filesystem::path> recovered(const std::string& storedPath) const;

    const std::shared_ptr<AttachmentLocating> primary_;
    const std::filesystem::path recoveryRoot_;
};

} // namespace quillbook
