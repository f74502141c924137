#pragma once

#include "core/text/Date.h"
#include "core/text/DateText.h"
#include "export/AttachmentCopier.h"
#include "export/WebArchive.h"
#include "platform/DurableFiles.h"

#include <functional>
#include <memory>

namespace quillbook {

/// What an export takes from the machine and the user beside its source. Each part must be safe to use from
/// any thread.
struct ExportEnvironment {
    WebArchiveSettings webArchive;
    std::shared_ptr<DurableFiles> durableFiles;
    std::function<Date()> now;
    const DateText* dateText = nullptr; ///< Never null in use; it outlives every export.
    CloneFunction clone;

    /// This machine's and this user's.
    static ExportEnvironment user();
};

} // namespace quillbook
