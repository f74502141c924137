#include "tests/desktop/PrivateDesktop.h"

#include <QUuid>
#include <filesystem>

namespace quillbook::test {
namespace {

std::string configuration(const std::filesystem::path& folder) {
    return "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN\" "
           "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">"
           "<busconfig><type>session</type><listen>unix:tmpdir=" +
           folder.string() + "</listen><servicedir>" + folder.string() +
           "</servicedir><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
           "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>";
}

} // namespace

PrivateBus::PrivateBus(const std::vector<std::string>& services) {
    for (const auto& service : services) {
        const std::string name = service + ".service";
        std::filesystem::copy_file("/usr/share/dbus-1/services/" + name, folder_ / name);
    }
    const auto file = folder_.write("bus.conf", configuration(folder_.path()));
    daemon_ = std::make_unique<RunningProgram>(std::vector<std::string>{
        "dbus-daemon", "--config-file=" + file.string(), "--nofork", "--nosyslog", "--print-address=3"});
    address_ = daemon_->line();
    ::qputenv("DBUS_SESSION_BUS_ADDRESS", QByteArray::fromStdString(address_));
}

PrivateBus::~PrivateBus() {
    for (const auto& name : connections_) {
        QDBusConnection::disconnectFromBus(name);
    }
    ::qunsetenv("DBUS_SESSION_BUS_ADDRESS");
}

QDBusConnection PrivateBus::connect() {
    connections_.push_back(QUuid::createUuid().toString());
    return QDBusConnection::connectToBus(QString::fromStdString(address_), connections_.back());
}

PrivateDesktop::PrivateDesktop() {
    const std::vector<std::pair<const char*, const char*>> folders = {{"HOME", "home"},
                                                                      {"XDG_CONFIG_HOME", "config"},
                                                                      {"XDG_DATA_HOME", "data"},
                                                                      {"XDG_CACHE_HOME", "cache"},
                                                                      {"XDG_STATE_HOME", "state"},
                                                                      {"XDG_CONFIG_DIRS", "system-config"},
                                                                      {"XDG_RUNTIME_DIR", "run"}};
    for (const auto& [variable, name] : folders) {
        const auto folder = home_ / name;
        std::filesystem::create_directory(folder);
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
        setVariable(variable, folder);
    }
    setVariable("XDG_CURRENT_DESKTOP", "");
    setVariable("BROWSER", "");
    setVariable("GSETTINGS_BACKEND", "keyfile");
}

PrivateDesktop::~PrivateDesktop() {
    for (auto variable = earlier_.rbegin(); variable != earlier_.rend(); ++variable) {
        if (variable->isSet) ::qputenv(variable->name, variable->value);
        if (!variable->isSet) ::qunsetenv(variable->name);
    }
}

void PrivateDesktop::setVariable(const char* name, const std::string& value) {
    earlier_.push_back({name, ::qEnvironmentVariableIsSet(name), ::qgetenv(name)});
    ::qputenv(name, QByteArray::fromStdString(value));
}

QDBusConnection noBus() {
    return QDBusConnection(QStringLiteral("a name that no connection has"));
}

} // namespace quillbook::test
