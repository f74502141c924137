#include "platform/TerminationSignals.h"
#include "shell/QuillbookApp.h"
#include "shell/adapter/LocalizedTranslator.h"
#include "shell/desktop/linux/SessionBus.h"
#include "shell/desktop/linux/SingleInstance.h"

#include <QGuiApplication>
#include <QIcon>
#include <QOpenGLContext>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QSocketNotifier>

namespace {

void nameApplication() {
    QGuiApplication::setApplicationName(QStringLiteral("Quillbook"));
    QGuiApplication::setApplicationVersion(QStringLiteral(QUILLBOOK_VERSION));
    QGuiApplication::setDesktopFileName(QLatin1String(quillbook::desktopEntryName));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/quillbook/icon/quillbook.svg")));
}

/// A machine without a working OpenGL draws with the processor; the toolkit would end the process.
void chooseRendering() {
    QOpenGLContext context;
    if (!context.create()) QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

/// Runs the window until it is closed; gives the process's exit code.
int run(quillbook::QuillbookApp*& running) {
    quillbook::QuillbookApp quillbook;
    running = &quillbook;
    const int code = quillbook.launch() ? QGuiApplication::exec() : 1;
    running = nullptr;
    return code;
}

} // namespace

int main(int argc, char** argv) {
    quillbook::refuseToStartABus(); // Before threads and Qt.
    quillbook::TerminationSignals signals;
    const auto activation = quillbook::SingleInstance::activationOfThisProcess(); // Qt takes it away.
    QGuiApplication application(argc, argv);
    nameApplication();
    chooseRendering();
    // What the screens do not draw themselves is drawn alike on every desktop.
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    quillbook::LocalizedTranslator words;
    QCoreApplication::installTranslator(&words);

    quillbook::QuillbookApp* running = nullptr;
    quillbook::SingleInstance instance(
        QString::fromLatin1(quillbook::desktopEntryName),
        [&running] {
            if (running != nullptr) running->reopen();
        },
        QDBusConnection::sessionBus(), activation);
    if (!instance.isFirst()) return 0;
    // Once the window is gone, the next process may be the first: this one only closes what it opened.
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &instance, [&instance, &signals] {
        instance.resign();
        signals.take(); // Whoever does not want to wait for the end may end it.
    });
    QSocketNotifier termination(signals.descriptor(), QSocketNotifier::Read);
    QObject::connect(&termination, &QSocketNotifier::activated, &application, [&signals] {
        signals.take();
        QGuiApplication::quit();
    });
    return run(running);
}
