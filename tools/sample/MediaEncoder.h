#pragma once

#include "core/records/ConversationSummary.h"
#include "tools/sample/PictureCanvas.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace quillbook::sample {

struct VideoFormat {
    int widthPixels = 640; ///< Even, as is the height.
    int heightPixels = 360;
    int framesPerSecond = 25;
};

/// Writes one MP4 file in memory: H.264 if a video format is given, and one channel of AAC at 44,100 Hz.
/// One thread and no use of the processor's extensions, so that the same input gives the same bytes. Throws
/// SampleError.
class MediaEncoder {
public:
    explicit MediaEncoder(std::optional<VideoFormat> video);
    ~MediaEncoder();
    MediaEncoder(const MediaEncoder&) = delete;
    MediaEncoder& operator=(const MediaEncoder&) = delete;

    void addFrame(const PictureCanvas& picture);
    /// Samples from -1 to 1.
    void addSound(const std::vector<float>& samples);
    /// Call it once, at the end.
    Data finish();

private:
    struct Streams;
    std::unique_ptr<Streams> streams_;
};

} // namespace quillbook::sample
