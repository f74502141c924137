#pragma once

#include <QTranslator>

namespace quillbook {

/// Sends each `qsTr` of the screens through the one lookup of user words.
class LocalizedTranslator final : public QTranslator {
    Q_OBJECT
public:
    using QTranslator::QTranslator;

    QString translate(const char* context, const char* sourceText, const char* disambiguation,
                      int n) const override;
    bool isEmpty() const override { return false; }
};

} // namespace quillbook
