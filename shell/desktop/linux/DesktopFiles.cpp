#include "shell/desktop/linux/DesktopFiles.h"

#include "shell/desktop/linux/DefaultBrowser.h"
#include "shell/desktop/linux/FileAddress.h"
#include "shell/desktop/linux/ProgramLaunch.h"

#include <QByteArray>
#include <QStringList>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace quillbook {
namespace {

/// The whole path of what is there, without a slash at its end; nothing where it is gone.
std::optional<std::filesystem::path> present(const std::filesystem::path& file) {
    std::error_code error;
    auto whole = std::filesystem::absolute(file, error).lexically_normal();
    if (!whole.has_filename()) whole = whole.parent_path();
    const bool isThere = !file.empty() && std::filesystem::exists(whole, error);
    return isThere ? std::optional(std::move(whole)) : std::nullopt;
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

DesktopFiles::DesktopFiles(QDBusConnection bus, std::chrono::milliseconds patience, QObject* parent)
    : QObject(parent), bus_(std::move(bus)), patience_(patience) {}

void DesktopFiles::reveal(const std::filesystem::path& file) {
    const auto whole = present(file);
    if (!whole) return;
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{fileAddress(*whole)} << QString();
    callOnBus(bus_, call, patience_, this, [this, folder = whole->parent_path()](const QDBusMessage& reply) {
        if (reply.type() != QDBusMessage::ReplyMessage) open(folder);
    });
}

void DesktopFiles::open(const std::filesystem::path& file) {
    if (const auto whole = present(file)) launchFirstThatSucceeds(openingCommands(*whole), this);
}

} // namespace quillbook
