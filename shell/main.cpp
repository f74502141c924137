#include "shell/QuillbookApp.h"
#include "shell/adapter/LocalizedTranslator.h"

#include <QGuiApplication>
#include <QIcon>
#include <QQuickStyle>

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Quillbook"));
    QGuiApplication::setApplicationVersion(QStringLiteral(QUILLBOOK_VERSION));
    QGuiApplication::setDesktopFileName(QLatin1String(quillbook::desktopEntryName));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/quillbook/icon/quillbook.svg")));
    // What the screens do not draw themselves is drawn alike on every desktop.
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    quillbook::LocalizedTranslator words;
    QCoreApplication::installTranslator(&words);

    quillbook::QuillbookApp quillbook;
    if (!quillbook.launch()) return 1;
    return QGuiApplication::exec();
}
