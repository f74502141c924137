#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <chrono>
#include <functional>

namespace quillbook {

/// How long D-Bus itself waits for a reply.
constexpr std::chrono::milliseconds usualPatience = std::chrono::seconds(25);

/// Sends a method call and comes back at once. `answer` gets the reply, or an error message where there is no
/// bus, no service or no reply in time: always later, on this thread, and not at all once `context` is gone.
void callOnBus(const QDBusConnection& bus, const QDBusMessage& call, std::chrono::milliseconds patience,
               QObject* context, std::function<void(const QDBusMessage&)> answer);

/// Whether the message is a reply whose values have the types of the signature, as D-Bus writes
/// them.
bool isReply(const QDBusMessage& message, const char* signature);

/// Calls a function for each signal that a service sends, while it lives. Signals of other types are dropped.
class BusSignalListener final : public QObject {
    Q_OBJECT
public:
    using Receiver = std::function<void(const QVariantList& values)>;

    /// An empty path stands for every path.
    BusSignalListener(QDBusConnection bus, const QString& service, const QString& path,
                      const QString& interface, const QString& member, QString signature, Receiver receiver,
                      QObject* parent = nullptr);

private Q_SLOTS:
    void receive(const QDBusMessage& message);

private:
    QString signature_;
    Receiver receiver_;
};

} // namespace quillbook
