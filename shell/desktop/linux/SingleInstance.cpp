#include "shell/desktop/linux/SingleInstance.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <utility>

namespace quillbook {
namespace {

const QString applicationInterface = QStringLiteral("org.freedesktop.Application");

} // namespace

SingleInstance::SingleInstance(QString name, std::function<void()> onActivate, QDBusConnection bus)
    : name_(std::move(name)), onActivate_(std::move(onActivate)), bus_(std::move(bus)) {
    if (!bus_.isConnected()) return;
    // The object first: whoever sees the name may call at once.
    bus_.registerVirtualObject(path(), this);
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        bus_.interface()->registerService(name_, QDBusConnectionInterface::DontQueueService,
                                          QDBusConnectionInterface::DontAllowReplacement);
    // A bus that refuses names to anybody makes nobody the other one.
    isFirst_ = !reply.isValid() || reply.value() == QDBusConnectionInterface::ServiceRegistered;
    if (!isFirst_) activateOther();
}

SingleInstance::~SingleInstance() {
    resign();
}

void SingleInstance::resign() {
    if (!isFirst_ || !bus_.isConnected()) return;
    isFirst_ = false;
    bus_.unregisterObject(path());
    bus_.interface()->unregisterService(name_);
}

QString SingleInstance::path() const {
    return QStringLiteral("/") + QString(name_).replace(u'.', u'/');
}

void SingleInstance::activateOther() const {
    auto call =
        QDBusMessage::createMethodCall(name_, path(), applicationInterface, QStringLiteral("Activate"));
    call.setAutoStartService(false);
    // Waited for: this process ends next, and what it had not sent would be lost.
    constexpr int millisecondsAtMost = 2'000;
    bus_.call(call << QVariantMap(), QDBus::Block, millisecondsAtMost);
}

QString SingleInstance::introspect(const QString& /*path*/) const {
    return QStringLiteral(
        "<interface name=\"org.freedesktop.Application\"><method name=\"Activate\">"
        "<arg name=\"platform_data\" type=\"a{sv}\" direction=\"in\"/></method></interface>");
}

bool SingleInstance::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.interface() != applicationInterface || message.member() != QLatin1String("Activate"))
        return false;
    connection.send(message.createReply());
    onActivate_();
    return true;
}

} // namespace quillbook
