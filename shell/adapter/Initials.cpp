#include "shell/adapter/Initials.h"

#include "core/text/GraphemeClusters.h"

#include <QList>
#include <QString>
#include <algorithm>

namespace quillbook {
namespace {

/// Marks without end may follow a letter; beyond this many bytes it stands alone.
constexpr std::size_t longestCluster = 64;

/// The capital that a word begins with; empty where that is no letter.
QString initialOf(std::string_view word) {
    const std::string_view cluster = firstGrapheme(word.substr(0, longestCluster + 1));
    const QString first = QString::fromUtf8(cluster.data(), static_cast<qsizetype>(cluster.size()));
    const auto scalars = first.toUcs4();
    if (scalars.isEmpty() || !QChar::isLetter(scalars.front())) return {};
    if (cluster.size() <= longestCluster) return first.toUpper();
    const char32_t letter = scalars.front();
    return QString::fromUcs4(&letter, 1).toUpper();
}

} // namespace

std::string initials(std::string_view name) {
    if (name.find('@') != std::string_view::npos) return {};
    QString first;
    std::size_t start = 0;
    for (; first.isEmpty() && start < name.size();) {
        const std::size_t end = std::min(name.find(' ', start), name.size());
        first = initialOf(name.substr(start, end - start));
        start = end + 1;
    }
    QString last;
    for (std::size_t end = name.size(); last.isEmpty() && start < end;) {
        const std::size_t space = name.substr(start, end - start).rfind(' ');
        const std::size_t word = space == std::string_view::npos ? start : start + space + 1;
        last = initialOf(name.substr(word, end - word));
        end = word > start ? word - 1 : start;
    }
    return (first + last).toStdString();
}

} // namespace quillbook
