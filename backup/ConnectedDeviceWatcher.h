#pragma once

#include "platform/USBDevices.h"

#include <memory>
#include <string>
#include <vector>

namespace quillbook {

struct ConnectedDevice {
    std::string productName; ///< As the device gives it.

    bool operator==(const ConnectedDevice&) const = default;
};

/// Tells which phones, tablets and players are plugged in right now. Keeps no state; any thread may ask.
class ConnectedDeviceWatcher {
public:
    explicit ConnectedDeviceWatcher(std::shared_ptr<const USBDevices> devices)
        : devices_(std::move(devices)) {}

    /// In the order of the bus. Never throws.
    std::vector<ConnectedDevice> connectedDevices() const;

private:
    std::shared_ptr<const USBDevices> devices_;
};

} // namespace quillbook
