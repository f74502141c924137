#include "shell/desktop/linux/DesktopPresence.h"

#include <QDBusMessage>
#include <QGuiApplication>
#include <algorithm>
#include <utility>

namespace quillbook {

DesktopPresence::DesktopPresence(const QString& desktopEntry, std::function<QWindow*()> window,
                                 QDBusConnection bus)
    : application_(QStringLiteral("application://%1.desktop").arg(desktopEntry)), window_(std::move(window)),
      bus_(std::move(bus)) {}

void DesktopPresence::showBadge(int percentage) {
    const int shown = std::clamp(percentage, 1, 100);
    if (shown == shownPercentage_) return;
    shownPercentage_ = shown;
    update(shown, true);
}

void DesktopPresence::clearBadge() {
    shownPercentage_ = 0;
    update(0, false);
}

void DesktopPresence::update(int percentage, bool isVisible) {
    const QVariantMap properties = {{QStringLiteral("count"), qint64{percentage}},
                                    {QStringLiteral("count-visible"), isVisible},
                                    {QStringLiteral("progress"), percentage / 100.0},
                                    {QStringLiteral("progress-visible"), isVisible}};
    auto signal = QDBusMessage::createSignal(QStringLiteral("/com/canonical/unity/launcherentry/quillbook"),
                                             QStringLiteral("com.canonical.Unity.LauncherEntry"),
                                             QStringLiteral("Update"));
    bus_.send(signal << application_ << properties);
}

void DesktopPresence::requestAttention() {
    constexpr int untilTheUserComes = 0;
    if (auto* window = window_()) window->alert(untilTheUserComes);
}

bool DesktopPresence::isActive() const {
    return QGuiApplication::applicationState() == Qt::ApplicationActive;
}

void DesktopPresence::activate() {
    auto* window = window_();
    if (window == nullptr) return;
    window->setWindowStates(window->windowStates() & ~Qt::WindowStates(Qt::WindowMinimized));
    window->setVisible(true);
    window->raise();
    window->requestActivate();
}

} // namespace quillbook
