#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quillbook {

/// One device on the USB bus.
struct USBDevice {
    std::uint16_t vendorID = 0;
    std::optional<std::string> productName; ///< As the device gives it.

    bool operator==(const USBDevice&) const = default;
};

/// What is plugged in. Any thread may ask.
class USBDevices {
public:
    virtual ~USBDevices() = default;
    /// In the order of the bus. Never throws: what cannot be read is left out.
    virtual std::vector<USBDevice> attached() const = 0;
};

/// The devices that the kernel lists below /sys/bus/usb/devices.
class SystemUSBDevices final : public USBDevices {
public:
    /// `root` stands for /sys.
    explicit SystemUSBDevices(std::filesystem::path root = "/sys") : root_(std::move(root)) {}
    std::vector<USBDevice> attached() const override;

private:
    std::filesystem::path root_;
};

} // namespace quillbook
