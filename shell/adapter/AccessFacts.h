#pragma once

#include "core/interfaces/MessagesAccessChecking.h"

#include <QObject>
#include <QString>

namespace quillbook {

/// What the card of the access screen says.
struct AccessFacts {
    Q_GADGET
    Q_PROPERTY(bool isGranted MEMBER isGranted)
    Q_PROPERTY(bool isChecking MEMBER isChecking)
    Q_PROPERTY(bool showsSteps MEMBER showsSteps)
    Q_PROPERTY(QString symbol MEMBER symbol)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString text MEMBER text)
public:
    bool isGranted = false;
    bool isChecking = false;
    bool showsSteps = false; ///< The numbered steps to the permission.
    QString symbol;
    QString title;
    QString text;
};

AccessFacts accessFacts(const MessagesAccessStatus& status);

} // namespace quillbook
