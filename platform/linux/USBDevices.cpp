#include "platform/USBDevices.h"

#include "core/text/UTF8.h"
#include "platform/FileError.h"
#include "platform/FileReader.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

namespace quillbook {
namespace {

/// The contents of a device's attribute, one line; the kernel gives no attribute more than a page.
std::optional<std::string> attribute(const std::filesystem::path& device, const char* name) {
    constexpr std::size_t page = 4096;
    try {
        std::string line = readWholeFile(device / name, page);
        if (line.ends_with('\n')) line.pop_back();
        return repairedUTF8(line);
    } catch (const FileError&) {
        return std::nullopt; // Interfaces have no such attribute, and a device may be unplugged meanwhile.
    }
}

std::optional<std::uint16_t> hexadecimal(std::string_view digits) {
    std::uint16_t number = 0;
    const char* end = digits.data() + digits.size();
    const auto [rest, problem] = std::from_chars(digits.data(), end, number, 16);
    return problem == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

/// The numbers in a name such as "3-1.4", port 4 of the hub at port 1 of bus 3; bus 3 itself is "usb3".
std::vector<std::uint32_t> busPosition(std::string_view name) {
    constexpr std::string_view digits = "0123456789";
    std::vector<std::uint32_t> position;
    for (auto start = name.find_first_of(digits); start != std::string_view::npos;
         start = name.find_first_of(digits)) {
        name.remove_prefix(start);
        const std::string_view number = name.substr(0, std::min(name.find_first_not_of(digits), name.size()));
        position.push_back(std::numeric_limits<std::uint32_t>::max());
        std::from_chars(number.data(), number.data() + number.size(), position.back());
        name.remove_prefix(number.size());
    }
    return position;
}

std::vector<std::filesystem::path> entriesByPosition(const std::filesystem::path& folder) {
    using Placed = std::pair<std::vector<std::uint32_t>, std::filesystem::path>;
    std::vector<Placed> placed;
    std::error_code failed;
    for (std::filesystem::directory_iterator entry(folder, failed), end; !failed && entry != end;
         entry.increment(failed))
        placed.emplace_back(busPosition(entry->path().filename().native()), entry->path());
    std::sort(placed.begin(), placed.end());
    std::vector<std::filesystem::path> entries;
    for (Placed& each : placed)
        entries.push_back(std::move(each.second));
    return entries;
}

} // namespace

std::vector<USBDevice> SystemUSBDevices::attached() const {
    std::vector<USBDevice> devices;
    for (const auto& entry : entriesByPosition(root_ / "bus" / "usb" / "devices")) {
        const auto vendor = hexadecimal(attribute(entry, "idVendor").value_or(""));
        if (vendor) devices.push_back({*vendor, attribute(entry, "product")});
    }
    return devices;
}

} // namespace quillbook
