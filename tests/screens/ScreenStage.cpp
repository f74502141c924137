#include "tests/screens/ScreenStage.h"

#include "shell/screens/ScreenModule.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QQuickItem>

namespace quillbook::test {
namespace {

QString accessibleName(QObject* item) {
    QAccessibleInterface* accessible =
        item == nullptr ? nullptr : QAccessible::queryAccessibleInterface(item);
    return accessible == nullptr ? QString() : accessible->text(QAccessible::Name);
}

template <typename Wanted>
void collect(QQuickItem* item, const Wanted& wanted, std::vector<QQuickItem*>& found) {
    if (!item->isVisible()) return;
    if (wanted(item)) found.push_back(item);
    for (QQuickItem* child : item->childItems())
        collect(child, wanted, found);
}

} // namespace

ScreenStage::ScreenStage() {
    services.avatars = std::make_shared<AvatarStore>();
    services.files = desktop;
    services.folders = desktop;
    services.sound = desktop;
    services.placesHint = "On this computer, Quillbook looks for a copy of a Mac’s Messages folder in "
                          "~/Library/Messages and for iPhone and iPad backups in "
                          "~/Library/Application Support/MobileSync/Backup.";
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
    wait(40);
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

void ScreenStage::click(const QQuickItem* item) {
    ASSERT_NE(item, nullptr) << "nothing to click";
    const QPointF place = item->mapToScene({item->width() / 2, item->height() / 2});
    for (const auto kind : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const auto held = kind == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QMouseEvent event(kind, place, window->mapToGlobal(place), Qt::LeftButton, held, Qt::NoModifier);
        QCoreApplication::sendEvent(window, &event);
    }
    QCoreApplication::processEvents();
}

void ScreenStage::wait(int milliseconds) {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

QQuickItem* ScreenStage::find(const char* className, const QString& name) const {
    const auto all = findAll(className, name);
    return all.empty() ? nullptr : all.front();
}

std::vector<QQuickItem*> ScreenStage::findAll(const char* className, const QString& name) const {
    std::vector<QQuickItem*> found;
    const auto wanted = [&](QQuickItem* item) {
        return item->inherits(className) && accessibleName(item) == name;
    };
    collect(window->contentItem(), wanted, found);
    return found;
}

std::vector<QQuickItem*> ScreenStage::itemsWith(const char* property) const {
    std::vector<QQuickItem*> found;
    const auto wanted = [&](const QQuickItem* item) {
        return item->metaObject()->indexOfProperty(property) >= 0;
    };
    collect(window->contentItem(), wanted, found);
    return found;
}

QString ScreenStage::focusedName() const {
    return accessibleName(window->activeFocusItem());
}

} // namespace quillbook::test
