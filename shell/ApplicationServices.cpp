#include "shell/ApplicationServices.h"

#include "contacts/ContactResolver.h"
#include "core/text/Localization.h"
#include "export/ArchiveDirectory.h"
#include "platform/FolderAccess.h"
#include "platform/linux/EvolutionAddressBook.h"
#include "platform/linux/PersonalAddressBook.h"
#include "recovery/CloudKitCacheRecoveryService.h"
#include "recovery/RecoveryFolder.h"
#include "shell/application/UserPreferences.h"
#include "store/MessagesAccessChecker.h"
#include "store/sources/BackupOnlyAccess.h"
#include "store/sources/MessageSourceProvider.h"

#include <cstdlib>
#include <utility>

namespace quillbook {
namespace {

MessageSourceProvider::ContactResolverFactory contactFactory(const std::filesystem::path& home) {
    return [cards = home / "contacts.vcf"]() -> std::shared_ptr<ContactResolving> {
        return std::make_shared<ContactResolver>(
            std::make_shared<PersonalAddressBook>(std::make_unique<EvolutionAddressBook>(), cards));
    };
}

std::filesystem::path userPreferencesFile(const std::filesystem::path& home) {
    const char* configHome = std::getenv("XDG_CONFIG_HOME");
    return preferencesFile(configHome == nullptr ? std::nullopt : std::optional<std::string>(configHome),
                           home);
}

} // namespace

AppModelServices applicationServices(const UserFolders& folders, std::shared_ptr<MainThread> mainThread,
                                     std::shared_ptr<BackgroundRunner> runner,
                                     std::shared_ptr<ExportPresenting> presence) {
    const MessagesPaths library = MessagesPaths::below(folders.home);
    const auto checker = std::make_shared<MessagesAccessChecker>(library);
    const auto sources =
        std::make_shared<MessageSourceProvider>(SourcePlaces::of(folders), contactFactory(folders.home));
    return AppModelServices{
        .accessChecker = std::make_shared<BackupOnlyAccessChecker>(checker, sources, library),
        .sourceProvider = std::make_shared<BackupOnlySourceProvider>(sources, checker, library),
        .preferences = std::make_shared<UserPreferences>(userPreferencesFile(folders.home)),
        .mainThread = std::move(mainThread),
        .backgroundRunner = std::move(runner),
        .presence = std::move(presence),
        .cacheRecovery =
            std::make_shared<CloudKitCacheRecoveryService>(CloudKitCacheRecoveryService::below(folders.home)),
        .recoveryRoot = recoveryRoot(folders.applicationSupport),
        .isWritableFolder = isWritableFolder,
        .priorArchive = priorArchive,
        .downloads = folders.downloads,
        .home = folders.home,
    };
}

std::string placesHint() {
    return localizedFormat(
        "On this computer, Quillbook looks for a copy of a Mac’s Messages folder in {} and "
        "for iPhone and iPad backups in {}.",
        "~/Library/Messages", "~/Library/Application Support/MobileSync/Backup");
}

} // namespace quillbook
