#pragma once

#include "backup/BackupCatalog.h"
#include "backup/ConnectedDeviceWatcher.h"
#include "core/interfaces/AttachmentLocating.h"
#include "core/interfaces/ContactResolving.h"
#include "core/interfaces/MessageSourceProviding.h"
#include "platform/UserFolders.h"
#include "store/MessagesPaths.h"
#include "store/sqlite/SQLiteDatabase.h"

#include <filesystem>
#include <functional>
#include <memory>

namespace quillbook {

/// Where the sources of one user lie, and where they may put what they need for a while.
struct SourcePlaces {
    MessagesPaths localLibrary;
    std::filesystem::path home; ///< What a leading "~" in a stored path stands for.
    BackupCatalog catalog;
    std::filesystem::path temporaryDirectory; ///< Takes the working directories of opened backups.
    std::filesystem::path recoveryRoot; ///< Recovered attachments, which stand in for the library's own.

    /// The usual places of a user.
    static SourcePlaces of(const UserFolders& folders);
};

/// Lists the places to read conversations from and opens one: this machine's own library and the device
/// backups. A plain value; safe to call from any thread.
class MessageSourceProvider final : public MessageSourceProviding {
public:
    /// Makes the resolver of one prepared source.
    using ContactResolverFactory = std::function<std::shared_ptr<ContactResolving>()>;

    MessageSourceProvider(
        SourcePlaces places, ContactResolverFactory contactResolverFactory,
        std::shared_ptr<const USBDevices> usbDevices = std::make_shared<SystemUSBDevices>());

    std::vector<MessageSource> availableSources(std::stop_token stop) override;
    /// Throws SQLiteError when the source's database cannot be opened, and what PreparedBackup::open throws.
    PreparedSource prepare(const MessageSource& source, const std::optional<std::string>& password,
                           std::stop_token stop) override;

private:
    PreparedSource prepareLocalMac() const;
    PreparedSource prepareDeviceBackup(const DeviceBackup& backup, const std::optional<std::string>& password,
                                       const std::stop_token& stop) const;
    PreparedSource prepared(const std::filesystem::path& database,
                            std::shared_ptr<AttachmentLocating> locator,
                            const std::optional<SQLiteRestraint>& restraint,
                            std::function<void()> teardown) const;

    SourcePlaces places_;
    ContactResolverFactory contactResolverFactory_;
    ConnectedDeviceWatcher connectedDevices_;
};

} // namespace quillbook
