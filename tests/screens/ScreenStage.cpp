#include "tests/screens/ScreenStage.h"

#include "shell/screens/ScreenModule.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QQuickItem>

namespace quillbook::test {
namespace {

QString accessibleName(QObject* item) {
    QAccessibleInterface* accessible =
        item == nullptr ? nullptr : QAccessible::queryAccessibleInterface(item);
    return accessible == nullptr ? QString() : accessible->text(QAccessible::Name);
}

QQuickItem* findBelow(QQuickItem* item, const char* className, const QString& name) {
    if (!item->isVisible()) return nullptr;
    if (item->inherits(className) && accessibleName(item) == name) return item;
    for (QQuickItem* child : item->childItems())
        if (QQuickItem* found = findBelow(child, className, name)) return found;
    return nullptr;
}

} // namespace

ScreenStage::ScreenStage() {
    services.avatars = std::make_shared<AvatarStore>();
    services.files = desktop;
    services.folders = desktop;
    services.sound = desktop;
    services.placesHint = "On this computer, Quillbook looks for a copy of a Mac’s Messages folder in "
                          "/home/ada/Library/Messages and for iPhone and iPad backups in "
                          "/home/ada/Library/Application Support/MobileSync/Backup.";
}

ScreenStage::~ScreenStage() {
    engine_.reset();
    adapter.reset();
}

void ScreenStage::open(const Appearance& wanted) {
    appearance->value = wanted;
    adapter = std::make_unique<AppModelAdapter>(model, services);
    appearanceAdapter_ = std::make_unique<AppearanceAdapter>(appearance);
    engine_ = std::make_unique<QQmlApplicationEngine>();
    prepareScreens(*engine_, services.avatars);
    window = showWindow(*engine_, {*adapter, *appearanceAdapter_, folderDialog_}, StartModel::no);
    ASSERT_NE(window, nullptr);
    refresh();
}

void ScreenStage::refresh() {
    // Pictures are decoded in other threads; a moment without news is enough, since a test fails on a missing
    // one.
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 40)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    window->grabWindow(); // Lays out what is new; what that changes is laid out with the next picture.
    window->grabWindow();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QImage ScreenStage::picture() {
    return window->grabWindow();
}

void ScreenStage::press(int key, Qt::KeyboardModifiers modifiers, const QString& text) {
    for (const auto kind : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(kind, key, modifiers, text);
        QCoreApplication::sendEvent(window, &event);
    }
    QCoreApplication::processEvents();
}

void ScreenStage::type(const QString& text) {
    for (const QChar each : text)
        press(each.toUpper().unicode(), Qt::NoModifier, each);
}

QQuickItem* ScreenStage::find(const char* className, const QString& name) const {
    return findBelow(window->contentItem(), className, name);
}

QString ScreenStage::focusedName() const {
    return accessibleName(window->activeFocusItem());
}

} // namespace quillbook::test
