#pragma once

#include <QObject>
#include <QString>

namespace quillbook::test {

/// A field as QML has it.
class FieldFake final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString text MEMBER text)
public:
    QString text;
};

} // namespace quillbook::test
