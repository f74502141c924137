#pragma once

#include "shell/desktop/AppearanceFollowing.h"

#include <QObject>
#include <memory>

namespace quillbook {

/// The user's appearance as the screens see it.
class AppearanceAdapter final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isDark READ isDark NOTIFY changed)
    Q_PROPERTY(bool hasHighContrast READ hasHighContrast NOTIFY changed)
    Q_PROPERTY(bool hasReducedMotion READ hasReducedMotion NOTIFY changed)
    Q_PROPERTY(double textScale READ textScale NOTIFY changed)
public:
    explicit AppearanceAdapter(std::shared_ptr<AppearanceFollowing> source, QObject* parent = nullptr);
    ~AppearanceAdapter() override;

    bool isDark() const { return source_->appearance().isDark; }
    bool hasHighContrast() const { return source_->appearance().hasHighContrast; }
    bool hasReducedMotion() const { return source_->appearance().hasReducedMotion; }
    double textScale() const { return source_->appearance().textScale; }

Q_SIGNALS:
    void changed();

private:
    const std::shared_ptr<AppearanceFollowing> source_;
};

} // namespace quillbook
