#include "bench/window/TurnWatch.h"
#include "bench/window/WindowBench.h"
#include "platform/ThreadRunner.h"
#include "platform/UserFolders.h"
#include "shell/ApplicationServices.h"
#include "shell/QuillbookApp.h"
#include "shell/application/ExportPresence.h"
#include "shell/desktop/linux/CompletionSound.h"
#include "shell/desktop/linux/DesktopFiles.h"
#include "shell/desktop/linux/DesktopNotifications.h"
#include "shell/desktop/linux/DesktopPresence.h"
#include "shell/desktop/linux/PortalAppearance.h"
#include "shell/screens/ScreenModule.h"

#include <QEventLoop>
#include <atomic>
#include <cstdio>
#include <functional>
#include <stdexcept>
#include <utility>

namespace quillbook::bench {
namespace {

using namespace std::chrono_literals;
using Count = std::shared_ptr<std::atomic<std::int64_t>>;

/// Counts the reports of the exports of another.
class CountingExporter final : public ExportRunning {
public:
    CountingExporter(std::shared_ptr<ExportRunning> exporter, Count reports)
        : exporter_(std::move(exporter)), reports_(std::move(reports)) {}
    ExportResult exportConversation(const SourceID& conversationID, const std::filesystem::path& destination,
                                    const ExportOptions& options, const ProgressCallback& progress,
                                    std::stop_token stop) override {
        const auto counted = [this, &progress](const ExportProgress& report) {
            ++*reports_;
            progress(report);
        };
        return exporter_->exportConversation(conversationID, destination, options, counted, std::move(stop));
    }

private:
    const std::shared_ptr<ExportRunning> exporter_;
    const Count reports_;
};

class CountingSources final : public MessageSourceProviding {
public:
    CountingSources(std::shared_ptr<MessageSourceProviding> sources, Count reports)
        : sources_(std::move(sources)), reports_(std::move(reports)) {}
    std::vector<MessageSource> availableSources(std::stop_token stop) override {
        return sources_->availableSources(std::move(stop));
    }
    PreparedSource prepare(const MessageSource& source, const std::optional<std::string>& password,
                           std::stop_token stop) override {
        PreparedSource prepared = sources_->prepare(source, password, std::move(stop));
        prepared.exporter = std::make_shared<CountingExporter>(prepared.exporter, reports_);
        return prepared;
    }

private:
    const std::shared_ptr<MessageSourceProviding> sources_;
    const Count reports_;
};

/// Lets the event loop run until the answer is yes.
void waitUntil(const std::function<bool()>& question) {
    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
        if (question()) loop.quit();
    });
    timer.start(20ms);
    loop.exec();
}

void waitFor(std::chrono::milliseconds time) {
    const auto end = TurnWatch::Clock::now() + time;
    waitUntil([end] { return TurnWatch::Clock::now() >= end; });
}

/// The application's parts as its entry puts them together, with the reports counted on their way.
struct Application {
    Application() {
        model = AppModel::make(services());
        adapter = std::make_unique<AppModelAdapter>(model, adapterServices());
        prepareScreens(engine, avatars);
        window = showWindow(engine, {*adapter, appearance, *folderDialog});
        if (window == nullptr) throw std::runtime_error("the window cannot be shown");
        QObject::connect(adapter.get(), &AppModelAdapter::progressChanged, window, [this] { ++shown; });
        // Told in the thread that paints.
        QObject::connect(
            window, &QQuickWindow::frameSwapped, window, [this] { ++frames; }, Qt::DirectConnection);
    }

    AppModelServices services() {
        const auto presence = std::make_shared<ExportPresence>(
            std::make_shared<DesktopNotifications>(desktopEntryName),
            std::make_shared<DesktopPresence>(desktopEntryName, [this] { return window; }));
        AppModelServices all = applicationServices(UserFolders::current(), std::make_shared<QtMainThread>(),
                                                   std::make_shared<ThreadRunner>(), presence);
        all.sourceProvider = std::make_shared<CountingSources>(all.sourceProvider, reports);
        return all;
    }

    AdapterServices adapterServices() const {
        return {.avatars = avatars,
                .files = std::make_shared<DesktopFiles>(),
                .folders = folderDialog,
                .sound = std::make_shared<CompletionSound>(desktopEntryName)};
    }

    const Count reports = std::make_shared<std::atomic<std::int64_t>>(0);
    std::int64_t shown = 0;
    std::atomic<std::int64_t> frames = 0;
    QQuickWindow* window = nullptr;
    const std::shared_ptr<AvatarStore> avatars = std::make_shared<AvatarStore>();
    const std::shared_ptr<FolderDialogAdapter> folderDialog = std::make_shared<FolderDialogAdapter>();
    AppearanceAdapter appearance{std::make_shared<PortalAppearance>()};
    std::shared_ptr<AppModel> model;
    std::unique_ptr<AppModelAdapter> adapter;
    QQmlApplicationEngine engine; ///< Goes first: its screens read all of the above.
};

void goToSetup(Application& application) {
    AppModelAdapter& adapter = *application.adapter;
    waitUntil([&] { return adapter.conversations()->count() > 0 && !adapter.isLoading(); });
    adapter.selectConversation(adapter.conversations()->idAt(0));
    waitUntil([&] { return application.model->state().attachmentStorage.has_value(); });
    adapter.continueToExportSetup();
    // What the screen looks up by itself is done by then, as when somebody reads it.
    waitFor(5s);
}

void print(const Application& application, const TurnWatch& watch, double seconds) {
    const auto& result = application.model->state().result;
    if (!result) throw std::runtime_error(application.model->state().errorMessage.value_or("no album"));
    std::printf("{\"seconds\": %.3f, \"attachments\": %lld, \"turns\": %zu, \"longest\": %.3f, \"at\": %.3f, "
                "\"work\": %.3f, \"p99\": %.3f, "
                "\"frames\": %lld, \"reports\": %lld, \"shown\": %lld}\n",
                seconds, static_cast<long long>(result->attachmentCount), watch.count(), watch.longest(),
                watch.longestAt() / 1e3, watch.mostWork(), watch.percentile(99),
                static_cast<long long>(application.frames), static_cast<long long>(*application.reports),
                static_cast<long long>(application.shown));
}

} // namespace

int runExport() {
    Application application;
    goToSetup(application);
    application.frames = 0;
    application.shown = 0;
    TurnWatch watch;
    watch.start();
    const auto start = TurnWatch::Clock::now();
    application.adapter->startExport();
    waitUntil([&] { return application.adapter->screen() != AppModelAdapter::Screen::exporting; });
    const double seconds = std::chrono::duration<double>(TurnWatch::Clock::now() - start).count();
    // The next screen and its entrance belong to it.
    waitFor(1s);
    watch.stop();
    print(application, watch, seconds);
    return 0;
}

} // namespace quillbook::bench
