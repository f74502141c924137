#include "shell/desktop/linux/SessionBus.h"
#include "tests/desktop/PrivateDesktop.h"

#include <cstddef>
#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace quillbook {
namespace {

constexpr const char* addressVariable = "DBUS_SESSION_BUS_ADDRESS";

class SessionBus : public test::PrivateDesktop {
protected:
    /// Unset until the test says otherwise, and as it was afterwards.
    SessionBus() {
        setVariable(addressVariable, "");
        ::qunsetenv(addressVariable);
    }

    static std::string addressAfterwards() {
        refuseToStartABus();
        return ::qgetenv(addressVariable).toStdString();
    }
};

TEST_F(SessionBus, thatIsNotThereIsNotStarted) {
    EXPECT_EQ(addressAfterwards(), "disabled:");
}

TEST_F(SessionBus, withAnEmptyAddressIsNotThere) {
    ::qputenv(addressVariable, "");
    EXPECT_EQ(addressAfterwards(), "disabled:");
}

TEST_F(SessionBus, withoutAFolderOfTheSessionIsNotThere) {
    for (const char* folder : {"", "/no/such/folder"}) {
        ::qunsetenv(addressVariable);
        setVariable("XDG_RUNTIME_DIR", folder);
        EXPECT_EQ(addressAfterwards(), "disabled:");
    }
}

TEST_F(SessionBus, isNoOrdinaryFile) {
    home_.write("run/bus", "");
    EXPECT_EQ(addressAfterwards(), "disabled:");
}

TEST_F(SessionBus, withAnAddressKeepsIt) {
    ::qputenv(addressVariable, "unix:path=/somewhere");
    EXPECT_EQ(addressAfterwards(), "unix:path=/somewhere");
}

TEST_F(SessionBus, behindTheSessionsSocketIsFoundThere) {
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string file = home_ / "run/bus";
    ASSERT_LT(file.size(), sizeof address.sun_path);
    std::memcpy(address.sun_path, file.data(), file.size());
    ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(addressAfterwards(), "");
    ::close(socket);
}

TEST_F(SessionBus, thatIsRefusedConnectsNobody) {
    const std::string address = addressAfterwards();
    EXPECT_FALSE(
        QDBusConnection::connectToBus(QString::fromStdString(address), QStringLiteral("none")).isConnected());
    QDBusConnection::disconnectFromBus(QStringLiteral("none"));
}

} // namespace
} // namespace quillbook
