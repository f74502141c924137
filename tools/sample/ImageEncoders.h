#pragma once

#include "core/records/ConversationSummary.h"
#include "tools/sample/PictureCanvas.h"

#include <cstdint>
#include <span>

namespace quillbook::sample {

/// Encoders whose files depend on nothing but the pictures. They throw SampleError.
Data encodeJPEG(const PictureCanvas& picture, int quality = 88);
Data encodePNG(const PictureCanvas& picture);

/// An endless animation with one palette of 6 × 7 × 6 colours; pictures of one size, each shown for
/// `centiseconds`.
Data encodeGIF(std::span<const PictureCanvas> frames, int centiseconds);

} // namespace quillbook::sample
