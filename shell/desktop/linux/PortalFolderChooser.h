#pragma once

#include "shell/desktop/FolderChoosing.h"
#include "shell/desktop/linux/BusCalls.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QWindow>
#include <chrono>
#include <cstdint>
#include <memory>

namespace quillbook {

/// The desktop's own dialog, through the file chooser portal (org.freedesktop.portal.FileChooser). Where
/// there is no portal, it does not answer in time, or it is too old to choose folders, `fallback` asks
/// instead.
class PortalFolderChooser final : public QObject, public FolderChoosing {
public:
    using Fallback = std::function<void(const FolderQuestion&, Answer)>;

    /// `window` gives the window to be modal to, or none.
    PortalFolderChooser(std::function<QWindow*()> window, Fallback fallback,
                        QDBusConnection bus = QDBusConnection::sessionBus(),
                        std::chrono::milliseconds patience = std::chrono::seconds(5),
                        QObject* parent = nullptr);
    ~PortalFolderChooser() override;
    PortalFolderChooser(const PortalFolderChooser&) = delete;
    PortalFolderChooser& operator=(const PortalFolderChooser&) = delete;

    void chooseFolder(const FolderQuestion& question, Answer answer) override;

private:
    void openDialog();
    void follow(const QString& request);
    void takeResponse(const QVariantList& values);
    void closeDialog();
    void askFallback();
    void finish(const std::optional<std::filesystem::path>& folder);

    std::function<QWindow*()> window_;
    Fallback fallback_;
    QDBusConnection bus_;
    std::chrono::milliseconds patience_;
    QDBusServiceWatcher portal_;
    std::uint64_t questions_ = 0; ///< Tells late answers to an earlier question apart.
    FolderQuestion question_;
    Answer answer_;   ///< Present while a question is open.
    QString request_; ///< The open dialog's object; empty where there is none.
    std::unique_ptr<BusSignalListener> response_;
};

} // namespace quillbook
