#pragma once

#include <filesystem>
#include <string>

namespace quillbook {

/// Shows a running export outside the window: badge, notification, attention. Main thread only; nothing waits
/// for it.
class ExportPresenting {
public:
    virtual ~ExportPresenting() = default;
    virtual void exportStarted() = 0;
    /// `fraction` is the whole export's, 0 to 1.
    virtual void exportProgressed(double fraction) = 0;
    virtual void exportFinished(const std::string& title, const std::filesystem::path& album) = 0;
    /// Takes the badge away, after an export that was cancelled or failed.
    virtual void clearBadge() = 0;
};

} // namespace quillbook
