#pragma once

#include "tools/sample/AttachmentShelf.h"
#include "tools/sample/LibraryTally.h"
#include "tools/sample/LibraryWriter.h"
#include "tools/sample/SampleOptions.h"

namespace quillbook::sample {

/// A library for measuring: one chat for every 250 messages, a few of them much longer than the rest, or all
/// messages in one chat. Row by row; memory does not grow with the number of messages.
void writeMeasuringLibrary(const SampleOptions& options, LibraryWriter& writer, AttachmentShelf& shelf,
                           LibraryTally& tally);

} // namespace quillbook::sample
