#include "shell/desktop/linux/PortalAppearance.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QMap>
#include <QStringList>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace quillbook {
namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");

const QString common = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");
const QString gnomeAccess = QStringLiteral("org.gnome.desktop.a11y.interface");

const QString colorScheme = common + QStringLiteral(" color-scheme");
const QString contrast = common + QStringLiteral(" contrast");
const QString reducedMotion = common + QStringLiteral(" reduced-motion");
const QString animations = gnome + QStringLiteral(" enable-animations");
const QString textScale = gnome + QStringLiteral(" text-scaling-factor");
const QString gnomeContrast = gnomeAccess + QStringLiteral(" high-contrast");

struct Setting {
    QString name;
    QMetaType::Type type;
};

const std::array<Setting, 6> followed = {{{colorScheme, QMetaType::UInt},
                                          {contrast, QMetaType::UInt},
                                          {reducedMotion, QMetaType::UInt},
                                          {animations, QMetaType::Bool},
                                          {textScale, QMetaType::Double},
                                          {gnomeContrast, QMetaType::Bool}}};

bool isUsable(const QString& name, const QVariant& value) {
    const bool isExpected = std::any_of(followed.begin(), followed.end(), [&](const Setting& setting) {
        return setting.name == name && value.typeId() == setting.type;
    });
    return isExpected && (name != textScale || std::isfinite(value.toDouble()));
}

/// The portal's numbers: 1 is dark, more contrast, less motion; others are no preference, or none of ours.
Appearance appearanceOf(const QVariantMap& settings) {
    constexpr double smallestTextScale = 0.5;
    constexpr double largestTextScale = 3.0;
    Appearance appearance;
    appearance.isDark = settings.value(colorScheme).toUInt() == 1;
    appearance.hasHighContrast =
        settings.value(contrast).toUInt() == 1 || settings.value(gnomeContrast).toBool();
    appearance.hasReducedMotion =
        settings.value(reducedMotion).toUInt() == 1 || !settings.value(animations, true).toBool();
    appearance.textScale =
        std::clamp(settings.value(textScale, 1.0).toDouble(), smallestTextScale, largestTextScale);
    return appearance;
}

} // namespace

PortalAppearance::PortalAppearance(QDBusConnection bus, std::chrono::milliseconds patience, QObject* parent)
    : QObject(parent), bus_(std::move(bus)), patience_(patience),
      portal_(service, bus_, QDBusServiceWatcher::WatchForRegistration) {
    QObject::connect(&portal_, &QDBusServiceWatcher::serviceRegistered, this, [this] { readAll(); });
    new BusSignalListener(
        bus_, service, path, interface, QStringLiteral("SettingChanged"), QStringLiteral("ssv"),
        [this](const QVariantList& values) {
            take(values[0].toString(), values[1].toString(),
                 qvariant_cast<QDBusVariant>(values[2]).variant());
            publish();
        },
        this);
    readAll();
}

void PortalAppearance::readAll() {
    const auto reading = ++readings_;
    auto call = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("ReadAll"));
    call << QStringList{common, gnome, gnomeAccess};
    callOnBus(bus_, call, patience_, this, [this, reading](const QDBusMessage& reply) {
        if (reading != readings_ || !isReply(reply, "a{sa{sv}}")) return;
        const auto spaces = qdbus_cast<QMap<QString, QVariantMap>>(reply.arguments().constFirst());
        settings_.clear();
        for (auto space = spaces.begin(); space != spaces.end(); ++space) {
            for (auto setting = space->begin(); setting != space->end(); ++setting) {
                take(space.key(), setting.key(), setting.value());
            }
        }
        publish();
    });
}

void PortalAppearance::take(const QString& space, const QString& key, const QVariant& value) {
    const QString name = space + QLatin1Char(' ') + key;
    if (isUsable(name, value)) settings_.insert(name, value);
}

void PortalAppearance::publish() {
    const Appearance changed = appearanceOf(settings_);
    if (changed == appearance_) return;
    appearance_ = changed;
    if (observer_) observer_();
}

} // namespace quillbook
