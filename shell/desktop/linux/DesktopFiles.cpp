#include "shell/desktop/linux/DesktopFiles.h"

#include "shell/desktop/linux/DefaultBrowser.h"
#include "shell/desktop/linux/FileAddress.h"
#include "shell/desktop/linux/ProgramLaunch.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QStringList>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace quillbook {
namespace {

/// The whole path, without a slash at its end; asks no disk.
std::filesystem::path wholePath(const std::filesystem::path& file) {
    std::error_code error;
    auto whole = std::filesystem::absolute(file, error).lexically_normal();
    return whole.has_filename() ? whole : whole.parent_path();
}

bool isWebPage(const std::filesystem::path& file) {
    const QByteArray extension = QByteArray::fromStdString(file.extension().native()).toLower();
    return extension == ".html" || extension == ".htm" || extension == ".xhtml";
}

std::vector<ProgramCommand> openingCommands(const std::filesystem::path& file) {
    const std::string address = fileAddress(file).toStdString();
    std::vector<ProgramCommand> commands;
    if (isWebPage(file)) {
        if (const auto browser = defaultBrowserEntry())
            commands.push_back({"gio", "launch", *browser, address});
    }
    commands.push_back({"gio", "open", address});
    commands.push_back({"xdg-open", file.native()});
    return commands;
}

} // namespace

bool isFileThere(const std::filesystem::path& file) {
    std::error_code error;
    return std::filesystem::exists(file, error);
}

DesktopFiles::DesktopFiles(QDBusConnection bus, std::chrono::milliseconds patience, FileLook look,
                           QObject* parent)
    : QObject(parent), bus_(std::move(bus)), patience_(patience), look_(std::move(look)) {}

void DesktopFiles::reveal(const std::filesystem::path& file) {
    if (file.empty()) return;
    const auto whole = wholePath(file);
    whereFileIsThere(whole, look_, this, [this, whole] { show(whole); });
}

void DesktopFiles::show(const std::filesystem::path& whole) {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{fileAddress(whole)} << QString();
    callOnBus(bus_, call, patience_, this, [this, folder = whole.parent_path()](const QDBusMessage& reply) {
        if (reply.type() != QDBusMessage::ReplyMessage) open(folder);
    });
}

void DesktopFiles::open(const std::filesystem::path& file) {
    if (file.empty()) return;
    const auto whole = wholePath(file);
    QObject* const process = QCoreApplication::instance();
    whereFileIsThere(whole, look_, process,
                     [whole, process] { launchFirstThatSucceeds(openingCommands(whole), process); });
}

} // namespace quillbook
