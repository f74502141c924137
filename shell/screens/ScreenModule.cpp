#include "shell/screens/ScreenModule.h"

#include "shell/adapter/AlbumPictureProvider.h"
#include "shell/adapter/AvatarProvider.h"
#include "shell/adapter/GlyphProvider.h"

#include <QEvent>
#include <QQmlComponent>
#include <QVariant>
#include <memory>

// The module's code is linked in as a library that nothing else refers to.
void qml_register_types_Quillbook();

namespace quillbook {
namespace {

template <typename Type>
void registerType(const char* name) {
    qmlRegisterUncreatableType<Type>("Quillbook", 1, 0, name, QStringLiteral("The application makes it."));
}

/// The engine knows the theme once something imports it.
QObject* themeOf(QQmlEngine& engine) {
    QQmlComponent component(&engine);
    component.setData("import QtQml; import Quillbook; QtObject { property QtObject theme: Theme }", QUrl());
    const std::unique_ptr<QObject> holder(component.create());
    return holder ? holder->property("theme").value<QObject*>() : nullptr;
}

/// The screens' one theme looks as the user wants it, from the first picture on.
void followAppearance(QQmlEngine& engine, const AppearanceAdapter& appearance) {
    QObject* theme = themeOf(engine);
    if (theme == nullptr) return;
    const auto follow = [theme, &appearance] {
        theme->setProperty("hasReducedMotion", appearance.hasReducedMotion());
        theme->setProperty("isDark", appearance.isDark());
        theme->setProperty("hasHighContrast", appearance.hasHighContrast());
        theme->setProperty("textScale", appearance.textScale());
    };
    follow();
    QObject::connect(&appearance, &AppearanceAdapter::changed, theme, follow);
}

/// Tells the theme by which device the window is used.
class InputWatch final : public QObject {
public:
    InputWatch(QQuickWindow& window, QObject& theme) : QObject(&window), theme_(theme) {
        window.installEventFilter(this);
    }
    bool eventFilter(QObject* /*window*/, QEvent* event) override {
        if (event->type() == QEvent::KeyPress) theme_.setProperty("isKeyboardInUse", true);
        if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::TouchBegin)
            theme_.setProperty("isKeyboardInUse", false);
        return false;
    }

private:
    QObject& theme_;
};

} // namespace

void prepareScreens(QQmlEngine& engine, const std::shared_ptr<const AvatarStore>& avatars) {
    qml_register_types_Quillbook();
    registerType<AppModelAdapter>("AppModelAdapter");
    registerType<AppearanceAdapter>("AppearanceAdapter");
    registerType<FolderDialogAdapter>("FolderDialogAdapter");
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("glyph"), new GlyphProvider);
    engine.addImageProvider(QStringLiteral("avatar"), new AvatarProvider(avatars));
    engine.addImageProvider(QStringLiteral("album"), new AlbumPictureProvider);
}

QQuickWindow* showWindow(QQmlApplicationEngine& engine, const WindowParts& parts, StartModel start) {
    followAppearance(engine, parts.appearance);
    engine.setInitialProperties({
        {QStringLiteral("model"), QVariant::fromValue(&parts.model)},
        {QStringLiteral("folderDialog"), QVariant::fromValue(&parts.folderDialog)},
        {QStringLiteral("startsModel"), start == StartModel::yes},
    });
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Quillbook/Main.qml")));
    const auto roots = engine.rootObjects();
    auto* window = roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(roots.front());
    if (QObject* theme = themeOf(engine); window != nullptr && theme != nullptr)
        new InputWatch(*window, *theme);
    return window;
}

} // namespace quillbook
