#include "backup/ConnectedDeviceWatcher.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quillbook {
namespace {

constexpr std::uint16_t appleVendorID = 0x05AC;
constexpr std::array<std::string_view, 3> deviceWords = {"iphone", "ipad", "ipod"};

/// The words looked for are ASCII, so only those letters need lowering.
char lowered(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool namesPortableDevice(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(), lowered);
    return std::any_of(deviceWords.begin(), deviceWords.end(),
                       [&name](std::string_view word) { return name.find(word) != std::string::npos; });
}

} // namespace

std::vector<ConnectedDevice> ConnectedDeviceWatcher::connectedDevices() const {
    std::vector<ConnectedDevice> connected;
    for (const USBDevice& device : devices_->attached()) {
        if (device.vendorID == appleVendorID && device.productName &&
            namesPortableDevice(*device.productName))
            connected.push_back({*device.productName});
    }
    return connected;
}

} // namespace quillbook
