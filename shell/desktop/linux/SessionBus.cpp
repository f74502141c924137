#include "shell/desktop/linux/SessionBus.h"

#include <cstdlib>
#include <string>

#include <sys/stat.h>

namespace quillbook {
namespace {

constexpr const char* addressVariable = "DBUS_SESSION_BUS_ADDRESS";

/// An empty variable counts as none, as it does for D-Bus.
std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

bool isSocket(const std::string& file) {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 && S_ISSOCK(status.st_mode);
}

} // namespace

void refuseToStartABus() {
    if (!variable(addressVariable).empty()) return;
    const std::string folder = variable("XDG_RUNTIME_DIR");
    if (!folder.empty() && isSocket(folder + "/bus")) return;
    constexpr int replace = 1;
    // A transport that no implementation knows.
    ::setenv(addressVariable, "disabled:", replace);
}

} // namespace quillbook
