#pragma once

#include "tools/sample/AttachmentShelf.h"
#include "tools/sample/LibraryTally.h"
#include "tools/sample/LibraryWriter.h"
#include "tools/sample/SampleOptions.h"

namespace quillbook::sample {

/// The library of the written conversations. Rows are held in memory until all are there, for a library's row
/// ids follow the time over all conversations.
void writeWrittenLibrary(const SampleOptions& options, LibraryWriter& writer, AttachmentShelf& shelf,
                         LibraryTally& tally);

} // namespace quillbook::sample
