#include "shell/desktop/linux/DesktopNotifications.h"

#include "core/text/GraphemeClusters.h"
#include "core/text/Localization.h"

#include <QVariantMap>
#include <algorithm>
#include <utility>

namespace quillbook {
namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");
const QString defaultAction = QStringLiteral("default");

/// Of notifications whose end no server ever told, the oldest are forgotten.
constexpr std::size_t rememberedCount = 64;

QDBusMessage serverCall(const QString& method) {
    return QDBusMessage::createMethodCall(service, path, service, method);
}

QDBusMessage busCall(const QString& method) {
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                          QStringLiteral("/org/freedesktop/DBus"),
                                          QStringLiteral("org.freedesktop.DBus"), method);
}

// A bubble shows less than this, and a bus ends the connection that sends it too much.
constexpr std::size_t longestTitleBytes = 256;
constexpr std::size_t longestBodyBytes = 1'024;

/// D-Bus strings hold no NUL.
QString plainText(const std::string& text, std::size_t maximumBytes) {
    return QString::fromStdString(shortened(text, maximumBytes)).remove(QChar(u'\0'));
}

QString bodyText(const std::string& body, const QStringList& capabilities) {
    const QString plain = plainText(body, longestBodyBytes);
    return capabilities.contains(QStringLiteral("body-markup")) ? plain.toHtmlEscaped() : plain;
}

/// Servers without actions may turn a notification that has one into a dialog.
QStringList actions(const QStringList& capabilities) {
    if (!capabilities.contains(QStringLiteral("actions"))) return {};
    return {defaultAction, QString::fromStdString(localized("Show in Finder"))};
}

} // namespace

DesktopNotifications::DesktopNotifications(QString desktopEntry, QDBusConnection bus,
                                           std::chrono::milliseconds patience, QObject* parent)
    : QObject(parent), desktopEntry_(std::move(desktopEntry)), bus_(std::move(bus)), patience_(patience),
      server_(service, bus_, QDBusServiceWatcher::WatchForOwnerChange) {
    // A new server counts its notifications anew.
    QObject::connect(&server_, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { shown_.clear(); });
    listen(QStringLiteral("ActionInvoked"), QStringLiteral("us"),
           [this](const QVariantList& values) { respond(values[0].toUInt(), values[1].toString()); });
    listen(QStringLiteral("NotificationClosed"), QStringLiteral("uu"),
           [this](const QVariantList& values) { forget(values[0].toUInt()); });
}

void DesktopNotifications::listen(const QString& member, const QString& signature,
                                  BusSignalListener::Receiver receiver) {
    new BusSignalListener(bus_, service, path, service, member, signature, std::move(receiver), this);
}

void DesktopNotifications::requestAuthorization(std::function<void(bool)> answer) {
    authorization(
        [answer = std::move(answer)](Authorization status) { answer(status == Authorization::authorized); });
}

void DesktopNotifications::authorization(std::function<void(Authorization)> answer) {
    const auto startable = [answer](const QDBusMessage& reply) {
        const bool isNamed =
            isReply(reply, "as") && reply.arguments().constFirst().toStringList().contains(service);
        answer(isNamed ? Authorization::authorized : Authorization::denied);
    };
    const auto running = [this, answer, startable](const QDBusMessage& reply) {
        if (isReply(reply, "b") && reply.arguments().constFirst().toBool()) {
            return answer(Authorization::authorized);
        }
        callOnBus(bus_, busCall(QStringLiteral("ListActivatableNames")), patience_, this, startable);
    };
    callOnBus(bus_, busCall(QStringLiteral("NameHasOwner")) << service, patience_, this, running);
}

void DesktopNotifications::add(const NotificationRequest& request, std::function<void(bool)> answer) {
    // Asked each time, since another server may have taken the place of the one before.
    callOnBus(bus_, serverCall(QStringLiteral("GetCapabilities")), patience_, this,
              [this, request, answer = std::move(answer)](const QDBusMessage& reply) {
                  if (!isReply(reply, "as")) return answer(false);
                  notify(request, reply.arguments().constFirst().toStringList(), answer);
              });
}

void DesktopNotifications::notify(const NotificationRequest& request, const QStringList& capabilities,
                                  std::function<void(bool)> answer) {
    const QVariantMap hints = {{QStringLiteral("desktop-entry"), desktopEntry_},
                               {QStringLiteral("sound-name"), QStringLiteral("message")}};
    constexpr int serversOwnTime = -1;
    auto call = serverCall(QStringLiteral("Notify"));
    call << QStringLiteral("Quillbook") << 0U << desktopEntry_ << plainText(request.title, longestTitleBytes)
         << bodyText(request.body, capabilities) << actions(capabilities) << hints << serversOwnTime;
    callOnBus(
        bus_, call, patience_, this,
        [this, information = request.information, answer = std::move(answer)](const QDBusMessage& reply) {
            const uint id = isReply(reply, "u") ? reply.arguments().constFirst().toUInt() : 0;
            if (id != 0) remember(id, information);
            answer(id != 0);
        });
}

void DesktopNotifications::remember(uint id, const NotificationInformation& information) {
    forget(id);
    shown_.push_back({id, information});
    if (shown_.size() > rememberedCount) shown_.pop_front();
}

void DesktopNotifications::forget(uint id) {
    std::erase_if(shown_, [id](const Shown& shown) { return shown.id == id; });
}

void DesktopNotifications::respond(uint id, const QString& action) {
    const auto shown =
        std::find_if(shown_.begin(), shown_.end(), [id](const Shown& one) { return one.id == id; });
    if (action != defaultAction || shown == shown_.end() || !response_) return;
    // The response may add a notification, which moves what is remembered.
    const NotificationInformation information = shown->information;
    response_(information, [] {});
}

} // namespace quillbook
