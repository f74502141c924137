#pragma once

#include "shell/desktop/FileRevealing.h"
#include "shell/desktop/linux/BusCalls.h"
#include "shell/desktop/linux/FileLook.h"

#include <QDBusConnection>
#include <QObject>
#include <chrono>

namespace quillbook {

/// Whether anything stands at the path, broken links aside.
bool isFileThere(const std::filesystem::path& file);

/// Files are shown by the file manager behind org.freedesktop.FileManager1. Where there is none, or it
/// answers with an error, the containing folder opens in the user's program for folders; so it does once the
/// bus itself gives up waiting, and no sooner, since a file manager that is only just starting would come
/// up with a window beside that one.
///
/// A web page opens in the user's browser, which is the program for "https" addresses: the program for the
/// type "text/html" is often an editor. Where no browser is named, a page opens as every other file does, in
/// the program for its type: by "gio open", else by "xdg-open". The programs run apart from this process, and
/// what was asked for opens even where this object has gone meanwhile.
class DesktopFiles final : public QObject, public FileRevealing {
public:
    explicit DesktopFiles(QDBusConnection bus = QDBusConnection::sessionBus(),
                          std::chrono::milliseconds patience = usualPatience, FileLook look = isFileThere,
                          QObject* parent = nullptr);

    void reveal(const std::filesystem::path& file) override;
    void open(const std::filesystem::path& file) override;

private:
    void show(const std::filesystem::path& whole);

    QDBusConnection bus_;
    std::chrono::milliseconds patience_;
    FileLook look_;
};

} // namespace quillbook
