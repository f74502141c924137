#include "shell/adapter/LocalizedTranslator.h"

#include <QGuiApplication>
#include <QQuickStyle>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationVersion(QStringLiteral("1.0"));
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    quillbook::LocalizedTranslator words;
    QCoreApplication::installTranslator(&words);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
