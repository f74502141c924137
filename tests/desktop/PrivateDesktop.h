#pragma once

#include "tests/desktop/RunningProgram.h"
#include "tests/support/TemporaryFolder.h"

#include <QDBusConnection>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quillbook::test {

/// A message bus of the test's own.
class PrivateBus {
public:
    /// `services` are files of /usr/share/dbus-1/services, without their extension, that the bus can start.
    explicit PrivateBus(const std::vector<std::string>& services = {});
    ~PrivateBus();

    /// A further connection, which lives as long as the bus.
    QDBusConnection connect();
    /// Ends the bus under all who are connected.
    void stop() { daemon_->stop(); }

private:
    TemporaryFolder folder_;
    std::unique_ptr<RunningProgram> daemon_;
    std::string address_;
    std::vector<QString> connections_;
};

/// A test with empty folders of its own for all that programs keep for a user, and no bus yet.
class PrivateDesktop : public testing::Test {
public:
    PrivateDesktop();
    ~PrivateDesktop() override;
    PrivateDesktop(const PrivateDesktop&) = delete;
    PrivateDesktop& operator=(const PrivateDesktop&) = delete;

protected:
    /// Sets a variable until the end of the test.
    void setVariable(const char* name, const std::string& value);

    TemporaryFolder home_;

private:
    struct Variable {
        const char* name;
        bool isSet;
        QByteArray value;
    };
    std::vector<Variable> earlier_;
};

/// A connection that is none.
QDBusConnection noBus();

} // namespace quillbook::test
