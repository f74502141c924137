#pragma once

#include "platform/ThreadRunner.h"
#include "shell/adapter/AppModelAdapter.h"
#include "shell/adapter/AppearanceAdapter.h"
#include "shell/adapter/FolderDialogAdapter.h"
#include "shell/adapter/QtMainThread.h"
#include "shell/application/AppDelegate.h"
#include "shell/application/UpdateController.h"
#include "shell/desktop/ApplicationPresenting.h"

#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <memory>

namespace quillbook {

/// The application's name among the desktop's entries and icons.
inline constexpr const char* desktopEntryName = "org.quillbook.Quillbook";

/// The application's entry: the model with the real services of this desktop, the delegate that answers the
/// system, and the window. Made after Qt's application object, on the main thread, once a process.
class QuillbookApp {
public:
    QuillbookApp();
    /// Closes the source in use and waits for the works under way: a cancelled export still removes what it
    /// had written. Where one does not end in time, the process ends here: what it left is swept later.
    ~QuillbookApp();
    QuillbookApp(const QuillbookApp&) = delete;
    QuillbookApp& operator=(const QuillbookApp&) = delete;

    /// Launches and shows the window; false where it cannot be shown.
    bool launch();
    /// Shows the window to a user who started the application again.
    void reopen();

private:
    void endWorks();
    std::shared_ptr<AppModel> makeModel();
    AdapterServices adapterServices() const;
    AppDelegateServices delegateServices() const;

    QQuickWindow* window_ = nullptr;
    std::shared_ptr<QtMainThread> mainThread_;
    std::shared_ptr<ThreadRunner> runner_;
    std::shared_ptr<ApplicationPresenting> application_;
    std::shared_ptr<NotificationCentering> notificationCenter_;
    std::shared_ptr<FileRevealing> files_;
    std::shared_ptr<AvatarStore> avatars_;
    std::shared_ptr<FolderDialogAdapter> folderDialog_;
    std::shared_ptr<UpdateController> updates_;
    std::shared_ptr<AppModel> model_;
    std::unique_ptr<AppDelegate> appDelegate_;
    std::unique_ptr<AppModelAdapter> adapter_;
    std::unique_ptr<AppearanceAdapter> appearance_;
    std::unique_ptr<QQmlApplicationEngine> engine_; ///< Goes first: its screens read all of the above.
};

} // namespace quillbook
