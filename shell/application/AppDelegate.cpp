#include "shell/application/AppDelegate.h"

#include "shell/application/ExportPresence.h"

#include <exception>
#include <utility>

namespace quillbook {
namespace {

/// Shows the album of a clicked notification; one without an album shows nothing.
void revealAlbum(FileRevealing& files, const NotificationInformation& information) {
    const auto archive = information.find(archiveInformationKey);
    if (archive == information.end()) return;
    if (const auto* path = std::get_if<std::string>(&archive->second)) files.reveal(*path);
}

} // namespace

AppDelegate::AppDelegate(AppDelegateServices services) : services_(std::move(services)) {}

void AppDelegate::applicationDidFinishLaunching() {
    if (isUnderTestHarness()) return;
    if (isToBeRelocated()) {
        // Nothing else starts in a copy that is about to be replaced.
        return comeToFront([flow = RelocationFlow(services_.relocationHost, services_.mainThread),
                            bundle = services_.bundle]() mutable { flow.run(bundle); });
    }
    startSweep();
    services_.notificationCenter->onResponse(
        [files = services_.files](const NotificationInformation& information,
                                  const std::function<void()>& completed) {
            revealAlbum(*files, information);
            completed();
        });
    comeToFront([] {});
}

void AppDelegate::applicationWillTerminate() {
    if (model) model->tearDown();
}

bool AppDelegate::isUnderTestHarness() const {
    return services_.hasEnvironmentKey("XCTestConfigurationFilePath") ||
           services_.hasEnvironmentKey("XCTestBundlePath");
}

bool AppDelegate::isToBeRelocated() const {
    return services_.relocationHost != nullptr && needsRelocation(services_.bundle);
}

void AppDelegate::comeToFront(std::function<void()> then) {
    if (services_.setRegularActivation) services_.setRegularActivation();
    services_.mainThread->post([application = services_.application, then = std::move(then)] {
        application->activate();
        then();
    });
}

void AppDelegate::startSweep() const {
    services_.backgroundRunner->run(BackgroundRunner::Priority::utility, [sweep = services_.sweep] {
        try {
            sweep();
        } catch (const std::exception&) {
            // What stays behind now is swept at the next start.
        }
    });
}

} // namespace quillbook
