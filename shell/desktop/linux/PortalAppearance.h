#pragma once

#include "shell/desktop/AppearanceFollowing.h"
#include "shell/desktop/linux/BusCalls.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QVariant>
#include <QVariantMap>
#include <chrono>
#include <cstdint>

namespace quillbook {

/// What the settings portal (org.freedesktop.portal.Settings) tells of the user's wishes, by the desktops'
/// common names for them and, beside those, by GNOME's. Values of an unexpected type count as absent. A
/// portal that starts again is read again; of one that is gone the last word stands.
class PortalAppearance final : public QObject, public AppearanceFollowing {
public:
    explicit PortalAppearance(QDBusConnection bus = QDBusConnection::sessionBus(),
                              std::chrono::milliseconds patience = usualPatience, QObject* parent = nullptr);

    Appearance appearance() const override { return appearance_; }
    void observe(std::function<void()> observer) override { observer_ = std::move(observer); }

private:
    void readAll();
    void take(const QString& space, const QString& key, const QVariant& value);
    void publish();

    QDBusConnection bus_;
    std::chrono::milliseconds patience_;
    QDBusServiceWatcher portal_;
    QVariantMap settings_; ///< Those that we follow, by "namespace key", with values of the right type.
    std::uint64_t readings_ = 0;
    Appearance appearance_;
    std::function<void()> observer_;
};

} // namespace quillbook
