#include "shell/adapter/QtMainThread.h"

#include <QMetaObject>
#include <QTimer>
#include <optional>
#include <utility>

namespace quillbook {
namespace {

/// Waits on the main thread for its time or for the stop, whichever comes first.
class DelayedWork final : public QTimer {
public:
    DelayedWork(QObject* thread, std::chrono::nanoseconds delay, std::stop_token stop,
                std::function<void()> work)
        : QTimer(thread), work_(std::move(work)) {
        setSingleShot(true);
        setTimerType(Qt::PreciseTimer);
        connect(this, &QTimer::timeout, this, [this] { run(); });
        start(std::chrono::ceil<std::chrono::milliseconds>(delay));
        // Called in the thread that stops.
        onStop_.emplace(std::move(stop), [this] {
            QMetaObject::invokeMethod(
                this, [this] { run(); }, Qt::QueuedConnection);
        });
    }

private:
    void run() {
        if (!work_) return;
        stop();
        deleteLater();
        std::exchange(work_, nullptr)();
    }

    std::function<void()> work_;
    std::optional<std::stop_callback<std::function<void()>>> onStop_;
};

} // namespace

void QtMainThread::post(std::function<void()> work) {
    QMetaObject::invokeMethod(this, std::move(work), Qt::QueuedConnection);
}

void QtMainThread::postAfter(std::chrono::nanoseconds delay, std::stop_token stop,
                             std::function<void()> work) {
    post([this, delay, stop = std::move(stop), work = std::move(work)]() mutable {
        // Its parent, this object, deletes it if it is still waiting then.
        new DelayedWork(this, delay, std::move(stop), std::move(work));
    });
}

} // namespace quillbook
