#pragma once

#include "shell/desktop/SoundPlaying.h"

#include <QThreadPool>
#include <memory>
#include <string>

namespace quillbook {

/// The event sound "complete" of the user's sound theme, through libcanberra. Reaching a sound server can
/// take long, so a thread of its own does that; what has not started by then is dropped when this ends.
class CompletionSound final : public SoundPlaying {
public:
    /// `desktopEntry` is the name by which the sound server may know us.
    explicit CompletionSound(std::string desktopEntry);
    ~CompletionSound() override;
    CompletionSound(const CompletionSound&) = delete;
    CompletionSound& operator=(const CompletionSound&) = delete;

    void playCompletion() override;

private:
    class Player;

    std::shared_ptr<Player> player_;
    std::unique_ptr<QThreadPool> thread_;
};

} // namespace quillbook
