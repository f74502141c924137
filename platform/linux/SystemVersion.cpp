#include "platform/SystemVersion.h"

#include "core/text/UTF8.h"
#include "platform/FileReader.h"

#include <algorithm>
#include <string_view>

#include <sys/utsname.h>

namespace quillbook {
namespace {

/// The PRETTY_NAME of os-release(5), without its quotes.
std::string prettyName() {
    constexpr std::string_view key = "\nPRETTY_NAME=";
    std::string lines = readWholeFile("/etc/os-release", 65'536);
    lines.insert(lines.begin(), '\n');
    const auto start = lines.find(key);
    if (start == std::string::npos) return {};
    std::string name = lines.substr(start + key.size());
    name.resize(std::min(name.find('\n'), name.size()));
    if (name.size() >= 2 && name.front() == '"' && name.back() == '"') name = name.substr(1, name.size() - 2);
    return repairedUTF8(name);
}

std::string kernelName() {
    utsname names{};
    if (::uname(&names) != 0) return "Linux";
    return std::string(names.sysname) + " " + names.release;
}

} // namespace

std::string systemVersion() {
    try {
        if (std::string name = prettyName(); !name.empty()) return name;
    } catch (const std::exception&) {
        return kernelName(); // A system without os-release still has a kernel.
    }
    return kernelName();
}

} // namespace quillbook
