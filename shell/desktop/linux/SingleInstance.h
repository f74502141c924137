#pragma once

#include <QByteArray>
#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QString>
#include <functional>

namespace quillbook {

/// One process of the application a session, as the desktop entry specification's D-Bus activation has it
/// (org.freedesktop.Application): the first owns the application's name on the bus, and a later one asks it
/// to come to the front. Two at once would sweep each other's unfinished albums and write over each other's
/// choices. Without a bus every process is the first. Main thread only.
class SingleInstance final : public QDBusVirtualObject {
public:
    /// What lets the window come to the front under a desktop that steals nobody's focus: that the user asked
    /// for it, as the later process was told. Empty where nobody said so.
    struct Activation {
        QByteArray token;     ///< XDG_ACTIVATION_TOKEN, for Wayland.
        QByteArray startupID; ///< DESKTOP_STARTUP_ID, for X11.

        bool operator==(const Activation&) const = default;
    };

    /// `name` is the desktop entry's without its extension. `onActivate` is called when a later process, or
    /// the desktop, asks for the window; the toolkit then has the token. `own` is what this process was told.
    SingleInstance(QString name, std::function<void()> onActivate,
                   QDBusConnection bus = QDBusConnection::sessionBus(),
                   const Activation& own = activationOfThisProcess());
    ~SingleInstance() override;
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    /// Whether this process is the one. Else the other one was asked to come to the front.
    bool isFirst() const { return isFirst_; }
    /// Leaves the place to the next process.
    void resign();

    /// Out of the environment. Qt takes the startup ID away as it starts: to be asked before that.
    static Activation activationOfThisProcess();

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    QString path() const;
    void activateOther(const Activation& own) const;

    QString name_;
    std::function<void()> onActivate_;
    QDBusConnection bus_;
    bool isFirst_ = true;
};

} // namespace quillbook
