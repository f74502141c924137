#pragma once

#include "core/records/ConversationSummary.h"

#include <cstdint>

namespace quillbook::sample {

/// A few seconds of a canoe on the water, with a tune: H.264 and AAC in MP4. Throws SampleError.
Data canoeMovie();

/// A tune as a voice note: AAC in MP4.
Data voiceNote();

/// A figure that jumps into the lake, for ever: GIF.
Data bounceAnimation();

} // namespace quillbook::sample
