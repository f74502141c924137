#pragma once

#include "shell/desktop/NotificationCentering.h"
#include "shell/desktop/linux/BusCalls.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QStringList>
#include <chrono>
#include <deque>

namespace quillbook {

/// Notifications by the desktops' common interface (org.freedesktop.Notifications). That knows no
/// permission: a user who wants none tells the desktop so, which then keeps them back by itself. Where a
/// service runs or can be started, the authorization is therefore there, asked for or not.
class DesktopNotifications final : public QObject, public NotificationCentering {
public:
    /// `desktopEntry` is the name of our desktop entry without its extension, which is our icon's name too.
    explicit DesktopNotifications(QString desktopEntry, QDBusConnection bus = QDBusConnection::sessionBus(),
                                  std::chrono::milliseconds patience = usualPatience,
                                  QObject* parent = nullptr);

    void requestAuthorization(std::function<void(bool granted)> answer) override;
    void authorization(std::function<void(Authorization)> answer) override;
    void add(const NotificationRequest& request, std::function<void(bool taken)> answer) override;
    void onResponse(Response response) override { response_ = std::move(response); }

private:
    struct Shown {
        uint id = 0;
        NotificationInformation information;
    };

    void notify(const NotificationRequest& request, const QStringList& capabilities,
                std::function<void(bool)> answer);
    void remember(uint id, const NotificationInformation& information);
    void forget(uint id);
    void respond(uint id, const QString& action);
    void listen(const QString& member, const QString& signature, BusSignalListener::Receiver receiver);

    QString desktopEntry_;
    QDBusConnection bus_;
    std::chrono::milliseconds patience_;
    QDBusServiceWatcher server_;
    Response response_;
    std::deque<Shown> shown_; ///< The oldest first.
};

} // namespace quillbook
