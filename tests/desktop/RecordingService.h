#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QVariantList>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace quillbook::test {

/// A service that keeps every call made to it, and answers as it is told.
class RecordingService final : public QDBusVirtualObject {
    Q_OBJECT
public:
    /// What to send back; nothing leaves the caller without an answer.
    using Answer = std::function<std::optional<QDBusMessage>(const QDBusMessage& call)>;

    /// Owns the name on the bus from now on.
    RecordingService(QDBusConnection bus, QString name, QString path);
    ~RecordingService() override;

    void answer(const QString& member, Answer answer) { answers_[member] = std::move(answer); }
    /// Answers with these values.
    void answerWith(const QString& member, QVariantList values);
    void answerWithError(const QString& member);
    void neverAnswer(const QString& member);
    void sendSignal(const QString& interface, const QString& member, const QVariantList& values);
    void sendSignalFrom(const QString& path, const QString& interface, const QString& member,
                        const QVariantList& values);

    std::vector<QDBusMessage> calls(const QString& member) const;
    std::size_t count(const QString& member) const { return calls(member).size(); }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
    QString introspect(const QString& path) const override;

private:
    QDBusConnection bus_;
    QString name_;
    QString path_;
    std::map<QString, Answer> answers_;
    std::vector<QDBusMessage> calls_;
};

} // namespace quillbook::test
