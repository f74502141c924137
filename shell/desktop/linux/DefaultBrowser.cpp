#include "shell/desktop/linux/DefaultBrowser.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QString>
#include <QStringList>

namespace quillbook {
namespace {

constexpr qint64 largestList = qint64{4} << 20U;
const QByteArray browserKey = "x-scheme-handler/https";

/// The entries that one group of one list names for the key, the preferred first.
QStringList namedEntries(const QString& list, const QByteArray& group) {
    QFile file(list);
    if (!file.open(QIODevice::ReadOnly)) return {};
    bool isInGroup = false;
    for (const QByteArray& line : file.read(largestList).split('\n')) {
        const QByteArray text = line.trimmed();
        if (text.startsWith('[')) isInGroup = text == '[' + group + ']';
        const auto equals = text.indexOf('=');
        if (!isInGroup || equals < 0 || text.left(equals).trimmed() != browserKey) continue;
        return QFile::decodeName(text.mid(equals + 1)).split(QLatin1Char(';'), Qt::SkipEmptyParts);
    }
    return {};
}

/// "vendor-name.desktop" may lie at "vendor/name.desktop" (XDG desktop entries, desktop file ID).
std::optional<QString> entryIn(const QString& folder, QString id) {
    for (qsizetype dash = 0; dash >= 0; dash = id.indexOf(QLatin1Char('-'))) {
        if (dash > 0) id[dash] = QLatin1Char('/');
        const QString file = folder + QLatin1Char('/') + id;
        if (QFileInfo(file).isFile()) return file;
    }
    return std::nullopt;
}

std::optional<QString> entryNamed(const QString& id) {
    if (id.contains(QLatin1Char('/'))) return std::nullopt;
    for (const QString& folder : QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation)) {
        if (auto file = entryIn(folder, id)) return file;
    }
    return std::nullopt;
}

/// Each folder's lists for the running desktops come before its general one.
QStringList associationLists() {
    QStringList names;
    const QString desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").toLower();
    for (const QString& desktop : desktops.split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
        if (!desktop.contains(QLatin1Char('/'))) names << desktop + QStringLiteral("-mimeapps.list");
    }
    names << QStringLiteral("mimeapps.list");
    QStringList lists;
    for (const QString& folder :
         QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation) +
             QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation)) {
        for (const QString& name : names) {
            lists << folder + QLatin1Char('/') + name;
        }
    }
    return lists;
}

QStringList installedLists() {
    QStringList lists;
    for (const QString& folder : QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation)) {
        lists << folder + QStringLiteral("/mimeinfo.cache");
    }
    return lists;
}

std::optional<std::filesystem::path> firstEntry(const QStringList& lists, const QByteArray& group) {
    for (const QString& list : lists) {
        for (const QString& id : namedEntries(list, group)) {
            if (const auto file = entryNamed(id.trimmed())) return QFile::encodeName(*file).toStdString();
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<std::filesystem::path> defaultBrowserEntry() {
    const QStringList lists = associationLists();
    if (auto entry = firstEntry(lists, "Default Applications")) return entry;
    if (auto entry = firstEntry(lists, "Added Associations")) return entry;
    return firstEntry(installedLists(), "MIME Cache");
}

} // namespace quillbook
