#pragma once

#include "core/records/ConversationSummary.h"
#include "tools/sample/SamplePeople.h"

namespace quillbook::sample {

/// A friendly face, 320 by 320.
Data portraitJPEG(const PortraitLook& look);

} // namespace quillbook::sample
