#include "shell/desktop/linux/BusCalls.h"

#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QTimer>
#include <utility>

namespace quillbook {

void callOnBus(const QDBusConnection& bus, const QDBusMessage& call, std::chrono::milliseconds patience,
               QObject* context, std::function<void(const QDBusMessage&)> answer) {
    if (!bus.isConnected()) {
        // A call without a connection would never be reported as finished.
        const auto error = call.createErrorReply(QDBusError::Disconnected, QStringLiteral("There is no bus"));
        QTimer::singleShot(0, context, [error, answer = std::move(answer)] { answer(error); });
        return;
    }
    auto* watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(call, static_cast<int>(patience.count())), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [answer = std::move(answer)](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         answer(finished->reply());
                     });
}

bool isReply(const QDBusMessage& message, const char* signature) {
    return message.type() == QDBusMessage::ReplyMessage && message.signature() == QLatin1String(signature);
}

BusSignalListener::BusSignalListener(QDBusConnection bus, const QString& service, const QString& path,
                                     const QString& interface, const QString& member, QString signature,
                                     Receiver receiver, QObject* parent)
    : QObject(parent), signature_(std::move(signature)), receiver_(std::move(receiver)) {
    bus.connect(service, path, interface, member, this, SLOT(receive(QDBusMessage)));
}

void BusSignalListener::receive(const QDBusMessage& message) {
    if (message.signature() == signature_) receiver_(message.arguments());
}

} // namespace quillbook
