#include "shell/desktop/linux/FileLook.h"

#include <QSocketNotifier>
#include <atomic>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

namespace quillbook {
namespace {

/// What the looking thread and the asking one share. The thread may outlive everything else.
struct Finding {
    Finding() = default;
    ~Finding() { ::close(descriptor); }
    Finding(const Finding&) = delete;
    Finding& operator=(const Finding&) = delete;

    std::atomic<bool> isThere = false;
    const int descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK); ///< Readable once the look is over.
};

void lookFor(const std::filesystem::path& file, const FileLook& look, Finding& finding) {
    finding.isThere = look(file);
    static_cast<void>(::eventfd_write(finding.descriptor, 1));
}

} // namespace

void whereFileIsThere(const std::filesystem::path& file, const FileLook& look, QObject* context,
                      std::function<void()> there) {
    const auto finding = std::make_shared<Finding>();
    if (finding->descriptor < 0) return;
    try {
        std::thread([file, look, finding] { lookFor(file, look, *finding); }).detach();
    } catch (const std::system_error&) {
        return; // A system that gives no thread starts no other program either.
    }
    auto* notifier = new QSocketNotifier(finding->descriptor, QSocketNotifier::Read, context);
    QObject::connect(notifier, &QSocketNotifier::activated, context,
                     [notifier, finding, there = std::move(there)] {
                         notifier->setEnabled(false);
                         notifier->deleteLater();
                         if (finding->isThere) there();
                     });
}

} // namespace quillbook
