#pragma once

#include "core/text/Date.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quillbook {

/// One local backup of a device.
struct DeviceBackup {
    std::string id; ///< The backup folder's name.
    std::string deviceName;
    std::optional<std::string> deviceModel;
    std::optional<std::string> productVersion;
    std::optional<Date> lastBackupDate;
    bool isEncrypted = false;
    std::filesystem::path url; ///< The backup folder.

    bool operator==(const DeviceBackup&) const = default;
};

} // namespace quillbook
