#include "tests/platform/PrivateBus.h"

#include "tests/support/ChildProcess.h"

#include <array>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <gio/gio.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillbook::test {
namespace {

constexpr const char* systemServices = "/usr/share/dbus-1/services";

std::string configuration(const std::filesystem::path& home) {
    return "<busconfig><type>session</type><listen>unix:dir=" + home.string() + "</listen><servicedir>" +
           (home / "services").string() +
           "</servicedir><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
           "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>";
}

void offerEvolution(const std::filesystem::path& services) {
    for (const char* name : {"AddressBook10", "Sources5"}) {
        const std::string file = std::string("org.gnome.evolution.dataserver.") + name + ".service";
        std::filesystem::copy_file(std::filesystem::path(systemServices) / file, services / file);
    }
}

/// One line of a pipe; what came until its end where there is none.
std::string lineFrom(int descriptor) {
    std::string line;
    for (char c = 0; ::read(descriptor, &c, 1) == 1 && c != '\n';)
        line += c;
    return line;
}

/// Becomes the bus's program. Its programs are of its process group and end with that.
void becomeDaemon(const std::filesystem::path& home, int addressPipe) {
    ::setpgid(0, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    enterSession(home, {});
    const int nowhere = ::open("/dev/null", O_RDWR);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    const std::string config = "--config-file=" + (home / "bus.conf").string();
    const std::string print = "--print-address=" + std::to_string(addressPipe);
    ::execlp("dbus-daemon", "dbus-daemon", config.c_str(), "--nofork", print.c_str(), nullptr);
    ::_exit(1);
}

GDBusMessage* swallow(GDBusConnection* /*bus*/, GDBusMessage* message, gboolean isIncoming, void* /*data*/) {
    const bool isCall = g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL;
    if (isIncoming == FALSE || !isCall) return message;
    g_object_unref(message);
    return nullptr;
}

void beSilent(const std::string& address, const std::string& name, int readyPipe) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    GDBusConnection* bus =
        g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, nullptr, nullptr);
    if (bus == nullptr) ::_exit(1);
    g_dbus_connection_add_filter(bus, swallow, nullptr, nullptr);
    GVariant* reply = g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", name.c_str(), 4U), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    if (reply == nullptr || ::write(readyPipe, "ready\n", 6) != 6) ::_exit(1);
    while (true)
        ::pause();
}

} // namespace

void enterSession(const std::filesystem::path& home, const std::string& address) {
    ::clearenv();
    ::setenv("PATH", "/usr/local/bin:/usr/bin:/bin", 1);
    ::setenv("LC_ALL", "C.UTF-8", 1);
    ::setenv("GSETTINGS_BACKEND", "memory", 1);
    ::setenv("HOME", home.c_str(), 1);
    ::setenv("TMPDIR", (home / "tmp").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (home / ".config").c_str(), 1);
    ::setenv("XDG_DATA_HOME", (home / ".local/share").c_str(), 1);
    ::setenv("XDG_CACHE_HOME", (home / ".cache").c_str(), 1);
    ::setenv("XDG_RUNTIME_DIR", (home / "run").c_str(), 1);
    if (!address.empty()) ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
}

PrivateBus::PrivateBus(Services services) {
    for (const char* folder : {"services", "run", "tmp"})
        std::filesystem::create_directory(home_ / folder);
    std::filesystem::permissions(home_ / "run", std::filesystem::perms::owner_all);
    home_.write("bus.conf", configuration(home_.path()));
    if (services == Services::evolution) offerEvolution(home_ / "services");
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throw std::runtime_error("pipe failed");
    daemon_ = startChild([&] { becomeDaemon(home_.path(), ends[1]); });
    ::close(ends[1]);
    address_ = lineFrom(ends[0]);
    ::close(ends[0]);
    if (address_.empty()) throw std::runtime_error("the bus did not start");
}

PrivateBus::~PrivateBus() {
    ::kill(-daemon_, SIGKILL);
    ::waitpid(daemon_, nullptr, 0);
}

std::string PrivateBus::run(const std::function<std::string()>& body) const {
    return runInChild([&] {
        enterSession(home_.path(), address_);
        return body();
    });
}

SilentService::SilentService(const PrivateBus& bus, const std::string& name) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throw std::runtime_error("pipe failed");
    process_ = startChild([&] { beSilent(bus.address(), name, ends[1]); });
    ::close(ends[1]);
    const std::string answer = lineFrom(ends[0]);
    ::close(ends[0]);
    if (answer != "ready") throw std::runtime_error("the silent service did not start");
}

SilentService::~SilentService() {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
}

} // namespace quillbook::test
