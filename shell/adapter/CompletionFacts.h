#pragma once

#include "core/model/AppModelState.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>

namespace quillbook {

/// What the completion screen tells of the album just made.
struct CompletionFacts {
    Q_GADGET
    Q_PROPERTY(bool isPresent MEMBER isPresent)
    Q_PROPERTY(QString heading MEMBER heading)
    Q_PROPERTY(QList<QUrl> pictures MEMBER pictures)
    Q_PROPERTY(bool isAnythingMissing MEMBER isAnythingMissing)
    Q_PROPERTY(QString missing MEMBER missing)
    Q_PROPERTY(QString findInBackup MEMBER findInBackup)
    Q_PROPERTY(QString warningsHeading MEMBER warningsHeading)
    Q_PROPERTY(QStringList warnings MEMBER warnings)
public:
    bool isPresent = false; ///< All below is empty without a result.
    QString heading;
    QList<QUrl> pictures; ///< Up to five files inside the album, for its image provider.
    bool isAnythingMissing = false;
    QString missing;
    QString findInBackup; ///< The words of the button; empty where it is not offered.
    QString warningsHeading;
    QStringList warnings; ///< Without those that `missing` tells of.
};

CompletionFacts completionFacts(const AppModelState& state);

} // namespace quillbook
