#pragma once

#include "core/interfaces/BackgroundRunner.h"
#include "core/interfaces/MainThread.h"
#include "core/model/AppModel.h"
#include "shell/application/Relocation.h"
#include "shell/desktop/ApplicationPresenting.h"
#include "shell/desktop/FileRevealing.h"
#include "shell/desktop/NotificationCentering.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace quillbook {

/// All that the delegate needs of the world outside. Nothing may be absent but what says so.
struct AppDelegateServices {
    /// Whether the process's environment holds the key, with whatever value.
    std::function<bool(const std::string& key)> hasEnvironmentKey;
    std::filesystem::path bundle; ///< Where the application runs from.
    /// Null where nothing relocates; the bundle's place then does not matter.
    std::shared_ptr<RelocationHosting> relocationHost;
    /// Makes the process an application with a window and an icon; absent where every process is one.
    std::function<void()> setRegularActivation;
    /// Removes what dead processes left behind. May be slow; runs off the main thread.
    std::function<void()> sweep;
    std::shared_ptr<MainThread> mainThread;
    std::shared_ptr<BackgroundRunner> backgroundRunner;
    std::shared_ptr<ApplicationPresenting> application;
    std::shared_ptr<NotificationCentering> notificationCenter;
    std::shared_ptr<FileRevealing> files;
};

/// Answers the system and the notification centre. Main thread only; lives as long as its services run.
class AppDelegate {
public:
    /// What is shown of a notification that comes while the application is in front: banner (16) and
    /// sound (2).
    static constexpr unsigned presentationOptions = 18;

    explicit AppDelegate(AppDelegateServices services);
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// Set once the model is made.
    std::shared_ptr<AppModel> model;

    void applicationDidFinishLaunching();
    /// The system shows the window.
    bool applicationShouldHandleReopen() const { return true; }
    /// Closing the window quits.
    bool applicationShouldTerminateAfterLastWindowClosed() const { return true; }
    void applicationWillTerminate();

private:
    bool isUnderTestHarness() const;
    bool isToBeRelocated() const;
    /// With the next turn of the main thread.
    void comeToFront(std::function<void()> then);
    void startSweep() const;

    const AppDelegateServices services_;
};

} // namespace quillbook
