#include "tests/desktop/RunningProgram.h"
#include "tests/support/TemporaryFolder.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

/// Every test sees a screen and a window manager of this run's own and no desktop of the machine's.
int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    const quillbook::test::TemporaryFolder home;
    for (const char* variable :
         {"DBUS_SESSION_BUS_ADDRESS", "WAYLAND_DISPLAY", "DISPLAY", "XDG_RUNTIME_DIR"}) {
        ::qunsetenv(variable);
    }
    ::qputenv("HOME", QByteArray::fromStdString(home.path().string()));
    ::qputenv("XDG_CACHE_HOME", QByteArray::fromStdString(home.path().string()));
    ::qputenv("NO_AT_BRIDGE", "1");
    quillbook::test::RunningProgram screen(
        {"Xvfb", "-displayfd", "3", "-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-noreset"});
    ::qputenv("DISPLAY", QByteArray::fromStdString(":" + screen.line()));
    ::qputenv("QT_QPA_PLATFORM", "xcb");
    const quillbook::test::RunningProgram windowManager({"openbox", "--sm-disable"});
    const quillbook::test::RunningProgram untilItManages(
        {"sh", "-c",
         "until xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; do sleep 0.02; done; echo up "
         ">&3"});
    static_cast<void>(untilItManages.line());
    const QGuiApplication application(count, arguments);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
