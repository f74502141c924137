#include "shell/adapter/Words.h"

#include "core/text/GraphemeClusters.h"

#include <QChar>

namespace quillbook {
namespace {

constexpr std::size_t longestText = 4'096; // Bytes.
constexpr std::size_t longestName = 120;

QString shortened(const std::string& utf8, std::size_t longest) {
    if (utf8.size() <= longest) return qtText(utf8);
    return qtText(std::string(graphemePrefix(utf8, longest)) + "…");
}

bool breaksLines(QChar character) {
    const auto category = character.category();
    return category == QChar::Other_Control || category == QChar::Separator_Line ||
           category == QChar::Separator_Paragraph;
}

} // namespace

QString shownText(const std::string& utf8) {
    return shortened(utf8, longestText);
}

QString shownName(const std::string& utf8) {
    QString name = shortened(utf8, longestName);
    for (QChar& each : name)
        if (breaksLines(each)) each = QChar::Space;
    return name;
}

} // namespace quillbook
