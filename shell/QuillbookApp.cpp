#include "shell/QuillbookApp.h"

#include "backup/WorkingDirectory.h"
#include "platform/UserFolders.h"
#include "shell/ApplicationServices.h"
#include "shell/application/ExportPresence.h"
#include "shell/desktop/linux/CompletionSound.h"
#include "shell/desktop/linux/DesktopFiles.h"
#include "shell/desktop/linux/DesktopNotifications.h"
#include "shell/desktop/linux/DesktopPresence.h"
#include "shell/desktop/linux/PortalAppearance.h"
#include "shell/desktop/linux/PortalFolderChooser.h"
#include "shell/screens/ScreenModule.h"

#include <QCoreApplication>
#include <QEvent>
#include <chrono>
#include <cstdlib>

namespace quillbook {

QuillbookApp::QuillbookApp()
    : mainThread_(std::make_shared<QtMainThread>()), runner_(std::make_shared<ThreadRunner>()),
      application_(std::make_shared<DesktopPresence>(desktopEntryName, [this] { return window_; })),
      notificationCenter_(std::make_shared<DesktopNotifications>(desktopEntryName)),
      files_(std::make_shared<DesktopFiles>()), avatars_(std::make_shared<AvatarStore>()),
      folderDialog_(std::make_shared<FolderDialogAdapter>()),
      updates_(std::make_shared<UpdateController>(nullptr, mainThread_)), model_(makeModel()),
      appDelegate_(std::make_unique<AppDelegate>(delegateServices())),
      adapter_(std::make_unique<AppModelAdapter>(model_, adapterServices())),
      appearance_(std::make_unique<AppearanceAdapter>(std::make_shared<PortalAppearance>())),
      engine_(std::make_unique<QQmlApplicationEngine>()) {
    appDelegate_->model = model_;
    updates_->observe([adapter = adapter_.get()] { Q_EMIT adapter->updatesChanged(); });
    prepareScreens(*engine_, avatars_);
}

QuillbookApp::~QuillbookApp() {
    updates_->observe({});
    window_ = nullptr;
    engine_.reset();
    appDelegate_->applicationWillTerminate();
    endWorks();
}

void QuillbookApp::endWorks() {
    constexpr auto longestWait = std::chrono::seconds(20);
    if (!runner_->waitUntilIdle(longestWait)) std::_Exit(0);
    // The ends of the works wait in the queue and hold the model, which holds the queue's own thread object.
    QCoreApplication::sendPostedEvents(mainThread_.get(), QEvent::MetaCall);
    QCoreApplication::removePostedEvents(mainThread_.get());
}

bool QuillbookApp::launch() {
    appDelegate_->applicationDidFinishLaunching();
    window_ = showWindow(*engine_, {*adapter_, *appearance_, *folderDialog_});
    return window_ != nullptr;
}

void QuillbookApp::reopen() {
    if (appDelegate_->applicationShouldHandleReopen()) application_->activate();
}

std::shared_ptr<AppModel> QuillbookApp::makeModel() {
    const auto presence = std::make_shared<ExportPresence>(notificationCenter_, application_);
    return AppModel::make(applicationServices(UserFolders::current(), mainThread_, runner_, presence));
}

AdapterServices QuillbookApp::adapterServices() const {
    AdapterServices services{
        .avatars = avatars_,
        .files = files_,
        .folders = std::make_shared<PortalFolderChooser>(
            [this] { return window_; },
            [dialog = folderDialog_](const FolderQuestion& question, FolderChoosing::Answer answer) {
                dialog->chooseFolder(question, std::move(answer));
            }),
        .sound = std::make_shared<CompletionSound>(desktopEntryName),
        .hasPrivacySettings = false,
        .placesHint = placesHint(),
    };
    if (updates_->hasUpdates()) {
        services.checkForUpdates = [updates = updates_] { updates->checkForUpdates(); };
        services.canCheckForUpdates = [updates = updates_] { return updates->canCheckForUpdates(); };
    }
    return services;
}

AppDelegateServices QuillbookApp::delegateServices() const {
    return AppDelegateServices{
        .hasEnvironmentKey = [](const std::string& key) { return qEnvironmentVariableIsSet(key.c_str()); },
        .bundle = QCoreApplication::applicationDirPath().toStdString(),
        .relocationHost = relocationHost(),
        .setRegularActivation = {},
        .sweep = [] { removeStaleWorkingDirectories(temporaryFolder()); },
        .mainThread = mainThread_,
        .backgroundRunner = runner_,
        .application = application_,
        .notificationCenter = notificationCenter_,
        .files = files_,
    };
}

} // namespace quillbook
