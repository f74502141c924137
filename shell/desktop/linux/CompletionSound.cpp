#include "shell/desktop/linux/CompletionSound.h"

#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

#include <canberra.h>

namespace quillbook {

namespace {

/// A context that is destroyed unloads its driver, at times from beneath the driver's own thread, which then
/// crashes. Contexts therefore stay until the process ends.
void keepToTheEnd(ca_context* context) {
    static std::mutex mutex;
    static auto& contexts = *new std::vector<ca_context*>;
    const std::lock_guard lock(mutex);
    contexts.push_back(context);
}

} // namespace

/// The one context, made at the first sound. Used by one thread at a time.
class CompletionSound::Player {
public:
    explicit Player(std::string desktopEntry) : desktopEntry_(std::move(desktopEntry)) {}
    ~Player() {
        if (context_ != nullptr) keepToTheEnd(context_);
    }
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    void play() {
        if (context_ == nullptr) makeContext();
        if (context_ == nullptr) return;
        // A failure means a machine without sound, which is to stay silent.
        ::ca_context_play(context_, 0, CA_PROP_EVENT_ID, "complete", CA_PROP_CANBERRA_CACHE_CONTROL,
                          "permanent", nullptr);
    }

    std::atomic<bool> isWaiting = false; ///< A sound is asked for and not yet handed over.

private:
    void makeContext() {
        if (::ca_context_create(&context_) != CA_SUCCESS) context_ = nullptr;
        if (context_ == nullptr) return;
        ::ca_context_change_props(context_, CA_PROP_APPLICATION_NAME, "Quillbook", CA_PROP_APPLICATION_ID,
                                  desktopEntry_.c_str(), CA_PROP_APPLICATION_ICON_NAME, desktopEntry_.c_str(),
                                  nullptr);
    }

    std::string desktopEntry_;
    ca_context* context_ = nullptr;
};

CompletionSound::CompletionSound(std::string desktopEntry)
    : player_(std::make_shared<Player>(std::move(desktopEntry))), thread_(std::make_unique<QThreadPool>()) {
    thread_->setMaxThreadCount(1);
}

CompletionSound::~CompletionSound() {
    constexpr int longestWaitMilliseconds = 500;
    thread_->clear();
    // A sound server that does not answer must not keep the application from ending: its thread is left
    // behind, with the player, which it shares.
    if (!thread_->waitForDone(longestWaitMilliseconds)) static_cast<void>(thread_.release());
}

void CompletionSound::playCompletion() {
    if (player_->isWaiting.exchange(true)) return;
    thread_->start([player = player_] {
        player->play();
        player->isWaiting = false;
    });
}

} // namespace quillbook
