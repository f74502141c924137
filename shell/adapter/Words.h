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
/// With digits in groups, as the user reads numbers.
inline std::string countWords(std::int64_t count) {
    return CountText::user().grouped(count);
}
inline QUrl fileURL(const std::filesystem::path& file) {
    return QUrl::fromLocalFile(qtText(file.string()));
}

} // namespace quillbook
