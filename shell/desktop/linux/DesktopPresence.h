#pragma once

#include "shell/desktop/ApplicationPresenting.h"

#include <QDBusConnection>
#include <QString>
#include <QVariantMap>
#include <QWindow>
#include <functional>

namespace quillbook {

/// The launcher entry that Unity made known and docks and task bars have taken up
/// (com.canonical.Unity.LauncherEntry): the percentage is its count and its progress. A dock forgets both
/// when this process ends.
class DesktopPresence final : public ApplicationPresenting {
public:
    /// `desktopEntry` is the name of our desktop entry without its extension; `window` may give none.
    DesktopPresence(const QString& desktopEntry, std::function<QWindow*()> window,
                    QDBusConnection bus = QDBusConnection::sessionBus());

    void showBadge(int percentage) override;
    void clearBadge() override;
    void requestAttention() override;
    bool isActive() const override;
    void activate() override;

private:
    void update(int percentage, bool isVisible);

    QString application_;
    std::function<QWindow*()> window_;
    QDBusConnection bus_;
    int shownPercentage_ = 0; ///< 0 where no badge is shown.
};

} // namespace quillbook
