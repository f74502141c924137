#pragma once

#include "backup/PreparedBackup.h"
#include "core/interfaces/AttachmentLocating.h"

#include <memory>

namespace quillbook {

/// Finds the attachments of an open device backup. Safe from any thread.
class BackupAttachmentLocator final : public AttachmentLocating {
public:
    explicit BackupAttachmentLocator(std::shared_ptr<PreparedBackup> backup) : backup_(std::move(backup)) {}

    /// Paths as the device's database stores them, below "~/", "/var/mobile/" or "/private/var/mobile/". A
    /// decrypted file takes room on the disk until it is released.
    std::optional<std::filesystem::path> locate(const std::string& storedPath) override;
    /// Nothing is decrypted.
    std::optional<std::filesystem::path> probe(const std::string& storedPath) override;
    void release(const std::filesystem::path& file) override;

private:
    const std::shared_ptr<PreparedBackup> backup_;
};

} // namespace quillbook
