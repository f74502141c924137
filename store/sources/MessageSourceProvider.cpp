#include "store/sources/MessageSourceProvider.h"

#include "backup/BackupAttachmentLocator.h"
#include "backup/BackupError.h"
#include "core/text/DateText.h"
#include "core/text/Localization.h"
#include "export/ExportCoordinator.h"
#include "recovery/RecoveryFolder.h"
#include "recovery/RecoveryOverlayAttachmentLocator.h"
#include "store/LocalLibraryAttachmentLocator.h"
#include "store/MessagesRepository.h"

#include <utility>

namespace quillbook {
namespace {

std::string subtitleOf(const DeviceBackup& backup) {
    const std::string kind = localized(backup.isEncrypted ? "Encrypted backup" : "Backup");
    if (!backup.lastBackupDate) return kind;
    return DateText::user().mediumDay(*backup.lastBackupDate) + " · " + kind;
}

MessageSource sourceOf(const DeviceBackup& backup) {
    return MessageSource{
        .id = backup.id,
        .title = backup.deviceName,
        .subtitle = subtitleOf(backup),
        .kind = backup,
        .requiresPassword = backup.isEncrypted,
    };
}

MessageSource sourceOf(const ConnectedDevice& device) {
    return MessageSource{
        .id = "connected-device",
        .title = device.productName + localized(" is connected"),
        .subtitle = localized("Back it up in Finder first, then it appears here"),
        .kind = ConnectedDeviceWithoutBackup(),
        .requiresPassword = false,
    };
}

} // namespace

SourcePlaces SourcePlaces::of(const UserFolders& folders) {
    return SourcePlaces{
        .localLibrary = MessagesPaths::below(folders.home),
        .home = folders.home,
        .catalog = BackupCatalog::below(folders.home),
        .temporaryDirectory = temporaryFolder(),
        .recoveryRoot = quillbook::recoveryRoot(folders.applicationSupport),
    };
}

MessageSourceProvider::MessageSourceProvider(SourcePlaces places,
                                             ContactResolverFactory contactResolverFactory,
                                             std::shared_ptr<const USBDevices> usbDevices)
    : places_(std::move(places)), contactResolverFactory_(std::move(contactResolverFactory)),
      connectedDevices_(std::move(usbDevices)) {}

std::vector<MessageSource> MessageSourceProvider::availableSources(std::stop_token /*stop*/) {
    std::vector<MessageSource> sources = {MessageSource{
        .id = "local-mac",
        .title = localized("This Mac"),
        .subtitle = localized("Local Messages library"),
        .kind = LocalMac(),
        .requiresPassword = false,
    }};
    const auto backups = places_.catalog.backups();
    for (const DeviceBackup& backup : backups)
        sources.push_back(sourceOf(backup));
    if (!backups.empty()) return sources;
    const auto devices = connectedDevices_.connectedDevices();
    if (!devices.empty()) sources.push_back(sourceOf(devices.front()));
    return sources;
}

PreparedSource MessageSourceProvider::prepare(const MessageSource& source,
                                              const std::optional<std::string>& password,
                                              std::stop_token stop) {
    if (source.isLocalMac()) return prepareLocalMac();
    if (const auto* backup = std::get_if<DeviceBackup>(&source.kind))
        return prepareDeviceBackup(*backup, password, stop);
    throw BackupError(BackupError::Reason::deviceNotBackedUp);
}

PreparedSource MessageSourceProvider::prepareLocalMac() const {
    auto library =
        std::make_shared<LocalLibraryAttachmentLocator>(places_.localLibrary.messagesRoot, places_.home);
    auto locator =
        std::make_shared<RecoveryOverlayAttachmentLocator>(std::move(library), places_.recoveryRoot);
    return prepared(places_.localLibrary.database(), std::move(locator), std::nullopt, [] {});
}

PreparedSource MessageSourceProvider::prepareDeviceBackup(const DeviceBackup& backup,
                                                          const std::optional<std::string>& password,
                                                          const std::stop_token& stop) const {
    const auto opened =
        PreparedBackup::open(backup.url, backup.isEncrypted, password, stop, places_.temporaryDirectory);
    return prepared(opened->messageDatabaseURL(), std::make_shared<BackupAttachmentLocator>(opened),
                    SQLiteRestraint{.stop = opened->tornDown()}, [opened] { opened->teardown(); });
}

PreparedSource MessageSourceProvider::prepared(const std::filesystem::path& database,
                                               std::shared_ptr<AttachmentLocating> locator,
                                               const std::optional<SQLiteRestraint>& restraint,
                                               std::function<void()> teardown) const {
    auto repository = std::make_shared<MessagesRepository>(database, std::move(locator),
                                                           contactResolverFactory_(), restraint);
    // List, load and export share the repository's one connection.
    auto exporter = std::make_shared<ExportCoordinator>(repository);
    return PreparedSource{
        .store = std::move(repository), .exporter = std::move(exporter), .teardown = std::move(teardown)};
}

} // namespace quillbook
