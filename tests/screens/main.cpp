#include "shell/adapter/LocalizedTranslator.h"
#include "tests/screens/QmlWarnings.h"

#include <QGuiApplication>
#include <QQuickStyle>
#include <QQuickWindow>

#include <gtest/gtest.h>

namespace {

/// Qt frees the textures of windows that are gone when the next one is drawn, and at no other time.
void freeTextures() {
    QQuickWindow last;
    last.show();
    last.releaseResources();
    last.grabWindow();
}

} // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationVersion(QStringLiteral("1.0"));
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    quillbook::LocalizedTranslator words;
    QCoreApplication::installTranslator(&words);
    testing::InitGoogleTest(&argc, argv);
    quillbook::test::failOnQmlWarnings();
    const int result = RUN_ALL_TESTS();
    freeTextures();
    return result;
}
