#include "shell/adapter/Initials.h"

#include "core/text/GraphemeClusters.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace quillbook {

std::string initials(std::string_view name) {
    if (name.find('@') != std::string_view::npos) return {};
    QString found;
    const QString text = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    for (const QString& word : text.split(u' ', Qt::SkipEmptyParts)) {
        const std::string utf8 = word.toStdString();
        const QString first = QString::fromStdString(std::string(firstGrapheme(utf8)));
        const auto scalars = first.toUcs4();
        if (scalars.isEmpty() || !QChar::isLetter(scalars.front())) continue;
        const QString capital = first.toUpper();
        // The first word's, and the last one's seen so far.
        if (found.isEmpty()) {
            found = capital;
        } else {
            const std::string soFar = found.toStdString();
            found = QString::fromStdString(std::string(firstGrapheme(soFar))) + capital;
        }
    }
    return found.toStdString();
}

} // namespace quillbook
