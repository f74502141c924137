#include "bench/window/WindowBench.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>

namespace quillbook::bench {
namespace {

/// As large as the application's, with a field as large as the one that searches.
constexpr const char* plainWindow = R"(
import QtQuick
Window {
    width: 1080
    height: 740
    visible: true
    color: "#f8f6f2"
    TextInput {
        x: 12
        y: 12
        width: 316
        height: 34
        focus: true
        font.pixelSize: 14
    }
}
)";

} // namespace

int runPlainWindow() {
    QQmlApplicationEngine engine;
    engine.loadData(plainWindow);
    return engine.rootObjects().isEmpty() ? 1 : QGuiApplication::exec();
}

} // namespace quillbook::bench
