#pragma once

#include "core/interfaces/CacheRecovery.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <optional>

namespace quillbook {

/// What the recovery controls say and offer.
struct RecoveryFacts {
    Q_GADGET
    Q_PROPERTY(QString state MEMBER state)
    Q_PROPERTY(QString symbol MEMBER symbol)
    Q_PROPERTY(QStringList lines MEMBER lines)
    Q_PROPERTY(QString note MEMBER note)
    Q_PROPERTY(bool isBusy MEMBER isBusy)
    Q_PROPERTY(bool canSurvey MEMBER canSurvey)
    Q_PROPERTY(bool canRecover MEMBER canRecover)
public:
    QString state;     ///< The state's name; empty before any survey.
    QString symbol;    ///< Empty where a spinner or nothing stands.
    QStringList lines; ///< From the top.
    QString note;
    bool isBusy = false;
    bool canSurvey = false;
    bool canRecover = false;
};

RecoveryFacts recoveryFacts(const std::optional<CacheRecoveryStatus>& status);

} // namespace quillbook
