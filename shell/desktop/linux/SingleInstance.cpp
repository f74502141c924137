#include "shell/desktop/linux/SingleInstance.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QVariantMap>
#include <utility>

namespace quillbook {
namespace {

const QString applicationInterface = QStringLiteral("org.freedesktop.Application");

constexpr const char* tokenVariable = "XDG_ACTIVATION_TOKEN";
const QString tokenKey = QStringLiteral("activation-token");
const QString startupIDKey = QStringLiteral("desktop-startup-id");

/// A value that is no text counts as absent.
QByteArray textOf(const QVariant& value) {
    return value.typeId() == QMetaType::QString ? value.toString().toUtf8() : QByteArray();
}

/// The values of the desktop entries' platform data.
SingleInstance::Activation activationIn(const QDBusMessage& message) {
    if (message.signature() != QLatin1String("a{sv}")) return {};
    const auto data = qdbus_cast<QVariantMap>(message.arguments().constFirst());
    return {textOf(data.value(tokenKey)), textOf(data.value(startupIDKey))};
}

} // namespace

SingleInstance::SingleInstance(QString name, std::function<void()> onActivate, QDBusConnection bus,
                               const Activation& own)
    : name_(std::move(name)), onActivate_(std::move(onActivate)), bus_(std::move(bus)) {
    if (!bus_.isConnected()) return;
    // The object first: whoever sees the name may call at once.
    bus_.registerVirtualObject(path(), this);
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        bus_.interface()->registerService(name_, QDBusConnectionInterface::DontQueueService,
                                          QDBusConnectionInterface::DontAllowReplacement);
    // A bus that refuses names to anybody makes nobody the other one.
    isFirst_ = !reply.isValid() || reply.value() == QDBusConnectionInterface::ServiceRegistered;
    if (!isFirst_) activateOther(own);
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

SingleInstance::Activation SingleInstance::activationOfThisProcess() {
    return {::qgetenv(tokenVariable), ::qgetenv("DESKTOP_STARTUP_ID")};
}

void SingleInstance::activateOther(const Activation& own) const {
    auto call =
        QDBusMessage::createMethodCall(name_, path(), applicationInterface, QStringLiteral("Activate"));
    call.setAutoStartService(false);
    QVariantMap data;
    if (!own.token.isEmpty()) data.insert(tokenKey, QString::fromUtf8(own.token));
    if (!own.startupID.isEmpty()) data.insert(startupIDKey, QString::fromUtf8(own.startupID));
    // Waited for: this process ends next, and what it had not sent would be lost.
    constexpr int millisecondsAtMost = 2'000;
    bus_.call(call << data, QDBus::Block, millisecondsAtMost);
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
    // There Qt looks for it when a window is next to come to the front.
    if (const auto token = activationIn(message).token; !token.isEmpty()) ::qputenv(tokenVariable, token);
    onActivate_();
    return true;
}

} // namespace quillbook
