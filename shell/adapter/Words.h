#pragma once

#include "core/text/CountText.h"

#include <QString>
#include <QUrl>
#include <filesystem>
#include <string>

namespace quillbook {

inline QString qtText(const std::string& utf8) {
    return QString::fromStdString(utf8);
}
/// Words of strangers, which have no greatest length: beyond some thousand letters nobody reads on, and to
/// lay them out takes long. Such are shortened.
QString shownText(const std::string& utf8);
/// As above, for a name that stands within our own words: in one line, and shorter.
QString shownName(const std::string& utf8);
/// With digits in groups, as the user reads numbers.
inline std::string countWords(std::int64_t count) {
    return CountText::user().grouped(count);
}
inline QUrl fileURL(const std::filesystem::path& file) {
    return QUrl::fromLocalFile(qtText(file.string()));
}

} // namespace quillbook
