#include "backup/ConnectedDeviceWatcher.h"
#include "tests/support/TemporaryFolder.h"

#include <utility>

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FakeUSBDevices final : public USBDevices {
public:
    explicit FakeUSBDevices(std::vector<USBDevice> devices) : devices_(std::move(devices)) {}
    std::vector<USBDevice> attached() const override { return devices_; }

private:
    std::vector<USBDevice> devices_;
};

std::vector<ConnectedDevice> connected(std::vector<USBDevice> attached) {
    return ConnectedDeviceWatcher(std::make_shared<FakeUSBDevices>(std::move(attached))).connectedDevices();
}

struct DeviceCase {
    const char* name;
    USBDevice device;
    bool isListed;
};

class AttachedDevice : public testing::TestWithParam<DeviceCase> {};

TEST_P(AttachedDevice, IsListedIfItIsAppleAndNamesAPortableDevice) {
    EXPECT_EQ(connected({GetParam().device}).size(), GetParam().isListed ? 1U : 0U);
}

INSTANTIATE_TEST_SUITE_P(Table, AttachedDevice,
                         testing::Values(DeviceCase{"phone", {1452, "iPhone"}, true},
                                         DeviceCase{"tablet", {1452, "iPad"}, true},
                                         DeviceCase{"player", {1452, "iPod touch"}, true},
                                         DeviceCase{"capitals", {1452, "IPHONE"}, true},
                                         DeviceCase{"wordInside", {1452, "Grace’s iphone 12"}, true},
                                         DeviceCase{"phoneOfAnotherVendor", {0x1D6B, "iPhone"}, false},
                                         DeviceCase{"keyboard", {1452, "Magic Keyboard"}, false},
                                         DeviceCase{"wordCutShort", {1452, "iPhon"}, false},
                                         DeviceCase{"wordInOtherLetters", {1452, "İPhone"}, false},
                                         DeviceCase{"emptyProduct", {1452, ""}, false},
                                         DeviceCase{"noProduct", {1452, std::nullopt}, false}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(ConnectedDeviceWatcher, KeepsTheCaseOfTheProduct) {
    EXPECT_THAT(connected({{1452, "iPoD Touch"}}), ElementsAre(ConnectedDevice{"iPoD Touch"}));
}

TEST(ConnectedDeviceWatcher, KeepsTheOrderOfTheBus) {
    EXPECT_THAT(connected({{1452, "iPhone"}, {0x1D6B, "hub"}, {1452, "iPad"}}),
                ElementsAre(ConnectedDevice{"iPhone"}, ConnectedDevice{"iPad"}));
}

TEST(ConnectedDeviceWatcher, FindsNothingWithoutABus) {
    const test::TemporaryFolder sys;
    const ConnectedDeviceWatcher watcher(std::make_shared<SystemUSBDevices>(sys.path()));
    EXPECT_THAT(watcher.connectedDevices(), IsEmpty());
}

TEST(ConnectedDeviceWatcher, SeesWhatWasPluggedInMeanwhile) {
    const test::TemporaryFolder sys;
    const ConnectedDeviceWatcher watcher(std::make_shared<SystemUSBDevices>(sys.path()));
    EXPECT_THAT(watcher.connectedDevices(), IsEmpty());
    sys.write("bus/usb/devices/1-1/idVendor", "05ac\n");
    sys.write("bus/usb/devices/1-1/product", "iPhone\n");
    EXPECT_THAT(watcher.connectedDevices(), ElementsAre(ConnectedDevice{"iPhone"}));
}

} // namespace
} // namespace quillbook
