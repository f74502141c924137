#include "tests/desktop/RecordingService.h"

#include <QDBusError>
#include <stdexcept>
#include <utility>

namespace quillbook::test {

RecordingService::RecordingService(QDBusConnection bus, QString name, QString path)
    : bus_(std::move(bus)), name_(std::move(name)), path_(std::move(path)) {
    if (!bus_.registerVirtualObject(path_, this, QDBusConnection::SubPath))
        throw std::runtime_error("no object");
    if (!bus_.registerService(name_)) throw std::runtime_error("no service");
}

RecordingService::~RecordingService() {
    bus_.unregisterService(name_);
    bus_.unregisterObject(path_);
}

void RecordingService::answerWith(const QString& member, QVariantList values) {
    answer(member,
           [values = std::move(values)](const QDBusMessage& call) { return call.createReply(values); });
}

void RecordingService::answerWithError(const QString& member) {
    answer(member, [](const QDBusMessage& call) {
        return call.createErrorReply(QDBusError::Failed, QStringLiteral("It did not work"));
    });
}

void RecordingService::neverAnswer(const QString& member) {
    answer(member, [](const QDBusMessage&) { return std::nullopt; });
}

void RecordingService::sendSignal(const QString& interface, const QString& member,
                                  const QVariantList& values) {
    sendSignalFrom(path_, interface, member, values);
}

void RecordingService::sendSignalFrom(const QString& path, const QString& interface, const QString& member,
                                      const QVariantList& values) {
    auto signal = QDBusMessage::createSignal(path, interface, member);
    signal.setArguments(values);
    bus_.send(signal);
}

std::vector<QDBusMessage> RecordingService::calls(const QString& member) const {
    std::vector<QDBusMessage> found;
    for (const auto& call : calls_) {
        if (call.member() == member) found.push_back(call);
    }
    return found;
}

bool RecordingService::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    calls_.push_back(message);
    const auto found = answers_.find(message.member());
    if (found == answers_.end()) return false;
    if (const auto reply = found->second(message)) connection.send(*reply);
    return true;
}

QString RecordingService::introspect(const QString&) const {
    return {};
}

} // namespace quillbook::test
