#pragma once

#include "core/records/DescribedError.h"

#include <string>

namespace quillbook {

/// Why a device backup cannot be opened or read. Callers show the description and branch on nothing.
class BackupError final : public DescribedError {
public:
    enum class Reason {
        unsupportedBackup,
        wrongPassword,
        manifestUnreadable,
        messageDatabaseMissing,
        malformedKeybag,
        deviceNotBackedUp, ///< A device is plugged in, and no backup of it is on this machine.
    };

    /// `detail` is the reason of an unsupported backup, in English; the others have none.
    explicit BackupError(Reason reason, std::string detail = {});

    std::string description() const override;
    bool operator==(const BackupError& other) const {
        return reason == other.reason && detail == other.detail;
    }

    Reason reason;
    std::string detail;
};

} // namespace quillbook
