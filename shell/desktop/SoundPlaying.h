#pragma once

namespace quillbook {

/// Main thread only; returns at once. A machine without sound stays silent.
class SoundPlaying {
public:
    virtual ~SoundPlaying() = default;
    /// The desktop's sound for something that took a while and is done.
    virtual void playCompletion() = 0;
};

} // namespace quillbook
