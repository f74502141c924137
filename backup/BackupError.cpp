#include "backup/BackupError.h"

#include "core/text/Localization.h"

#include <utility>

namespace quillbook {

BackupError::BackupError(Reason why, std::string words) : reason(why), detail(std::move(words)) {}

std::string BackupError::description() const {
    switch (reason) {
    case Reason::unsupportedBackup:
        return localizedFormat("This backup is not supported: {}", detail);
    case Reason::wrongPassword:
        return localized("The backup password is incorrect.");
    case Reason::manifestUnreadable:
        return localized("The backup manifest could not be read.");
    case Reason::messageDatabaseMissing:
        return localized("This backup does not contain a Messages database. It may be incomplete, or made "
                         "before the device had any messages. Backing the device up again in Finder usually "
                         "produces one that does.");
    case Reason::malformedKeybag:
        return localized("The backup’s encryption keybag is malformed.");
    case Reason::deviceNotBackedUp:
        return localized("Quillbook reads a backup of your iPhone or iPad, not the device itself. Open "
                         "Finder, select your device, and choose Back Up Now. The backup then appears here "
                         "as a source.");
    }
    return localized("The backup manifest could not be read.");
}

} // namespace quillbook
