#include "core/text/UTF8.h"
#include "platform/USBDevices.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace quillbook {
namespace {

using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;

/// A tree as the kernel has it: entries of the bus are links to the devices' own folders.
class USBDevicesOfATree : public testing::Test {
protected:
    std::filesystem::path entry(const std::string& name) {
        const auto device = sys / ("devices/pci0000:00/" + name);
        std::filesystem::create_directories(device);
        std::filesystem::create_directories(sys / "bus/usb/devices");
        std::filesystem::create_directory_symlink("../../../devices/pci0000:00/" + name,
                                                  sys / ("bus/usb/devices/" + name));
        return device;
    }
    void device(const std::string& name, std::string_view vendor, std::string_view product) {
        const auto folder = std::filesystem::relative(entry(name), sys.path()).string();
        sys.write(folder + "/idVendor", vendor);
        sys.write(folder + "/product", product);
    }
    std::vector<USBDevice> attached() const { return SystemUSBDevices(sys.path()).attached(); }

    TemporaryFolder sys;
};

TEST_F(USBDevicesOfATree, HaveAVendorAndAProduct) {
    device("1-1", "05ac\n", "iPhone\n");
    EXPECT_THAT(attached(), ElementsAre(USBDevice{0x05AC, "iPhone"}));
}

TEST_F(USBDevicesOfATree, StandInTheOrderOfTheBus) {
    for (const char* name : {"2-1", "1-10", "usb2", "1-2.10", "1-2", "usb1", "1-2.9"})
        device(name, "1d6b\n", std::string(name) + "\n");
    std::vector<std::string> order;
    for (const USBDevice& each : attached())
        order.push_back(each.productName.value_or("none"));
    EXPECT_THAT(order, ElementsAre("usb1", "1-2", "1-2.9", "1-2.10", "1-10", "usb2", "2-1"));
}

TEST_F(USBDevicesOfATree, LeaveOutInterfaces) {
    device("1-1", "05ac\n", "iPad\n");
    entry("1-1:1.0");
    EXPECT_THAT(attached(), ElementsAre(USBDevice{0x05AC, "iPad"}));
}

TEST_F(USBDevicesOfATree, MayHaveNoProduct) {
    device("1-1", "05ac\n", "");
    std::filesystem::remove(sys / "devices/pci0000:00/1-1/product");
    EXPECT_THAT(attached(), ElementsAre(USBDevice{0x05AC, std::nullopt}));
}

TEST_F(USBDevicesOfATree, LeaveOutALinkToNothing) {
    device("1-1", "05ac\n", "iPod touch\n");
    std::filesystem::create_directory_symlink("../../../devices/unplugged", sys / "bus/usb/devices/1-2");
    EXPECT_THAT(attached(), ElementsAre(USBDevice{0x05AC, "iPod touch"}));
}

TEST_F(USBDevicesOfATree, KeepAllOfAProductButTheEndOfItsLine) {
    device("1-1", "05ac\n", " My iPhone \n\n");
    EXPECT_THAT(attached(), ElementsAre(USBDevice{0x05AC, " My iPhone \n"}));
}

TEST_F(USBDevicesOfATree, GiveValidUTF8) {
    device("1-1", "05ac\n", "iPhone\xFF\n");
    EXPECT_THAT(attached(), ElementsAre(USBDevice{0x05AC, "iPhone\uFFFD"}));
}

TEST_F(USBDevicesOfATree, LeaveOutAProductLongerThanThePageOfAnAttribute) {
    device("1-1", "05ac\n", std::string(5000, 'a'));
    EXPECT_THAT(attached(), ElementsAre(USBDevice{0x05AC, std::nullopt}));
}

TEST_F(USBDevicesOfATree, DoNotWaitForAPipe) {
    device("1-1", "05ac\n", "");
    const auto product = sys / "devices/pci0000:00/1-1/product";
    std::filesystem::remove(product);
    ASSERT_EQ(::mkfifo(product.c_str(), 0600), 0);
    EXPECT_THAT(attached(), ElementsAre(USBDevice{0x05AC, std::nullopt}));
}

class OddVendor : public USBDevicesOfATree, public testing::WithParamInterface<const char*> {};

TEST_P(OddVendor, IsLeftOut) {
    device("1-1", GetParam(), "iPhone\n");
    EXPECT_THAT(attached(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Table, OddVendor,
                         testing::Values("", "\n", "wxyz\n", "105ac\n", "-5ac\n", "0x05ac\n",
                                         "05ac iPhone\n"));

TEST(SystemUSBDevices, AreNoneWithoutABus) {
    const TemporaryFolder sys;
    EXPECT_THAT(SystemUSBDevices(sys.path()).attached(), IsEmpty());
    EXPECT_THAT(SystemUSBDevices(sys / "missing").attached(), IsEmpty());
}

TEST(SystemUSBDevices, OfThisMachineCanBeAskedFor) {
    for (const USBDevice& device : SystemUSBDevices().attached())
        EXPECT_TRUE(isValidUTF8(device.productName.value_or("")));
}

} // namespace
} // namespace quillbook
