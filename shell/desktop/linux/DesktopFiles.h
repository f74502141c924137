#pragma once

#include "shell/desktop/FileRevealing.h"
#include "shell/desktop/linux/BusCalls.h"

#include <QDBusConnection>
#include <QObject>
#include <chrono>

namespace quillbook {

/// Files are shown by the file manager behind org.freedesktop.FileManager1. Where there is none, or it
/// answers with an error or not in time, the containing folder opens in the user's program for folders.
///
/// A web page opens in the user's browser, which is the program for "https" addresses: the program for the
/// type "text/html" is often an editor. Where no browser is named, a page opens as every other file does, in
/// the program for its type: by "gio open", else by "xdg-open". The programs run apart from this process.
class DesktopFiles final : public QObject, public FileRevealing {
public:
    explicit DesktopFiles(QDBusConnection bus = QDBusConnection::sessionBus(),
                          std::chrono::milliseconds patience = std::chrono::seconds(5),
                          QObject* parent = nullptr);

    void reveal(const std::filesystem::path& file) override;
    void open(const std::filesystem::path& file) override;

private:
    QDBusConnection bus_;
    std::chrono::milliseconds patience_;
};

} // namespace quillbook
