#pragma once

#include "core/interfaces/ExportPresenting.h"
#include "shell/desktop/ApplicationPresenting.h"
#include "shell/desktop/NotificationCentering.h"

#include <cstdint>
#include <memory>

namespace quillbook {

/// Where a notification carries the album's path, as text.
inline constexpr const char* archiveInformationKey = "archive";

/// A running export on the application's icon, and its end as a notification where the application is not in
/// front. One for the whole application; main thread only. No permission, no notification: nobody is told.
class ExportPresence final : public ExportPresenting {
public:
    ExportPresence(std::shared_ptr<NotificationCentering> center,
                   std::shared_ptr<ApplicationPresenting> application);

    /// Asks for the permission to notify, the first time only.
    void exportStarted() override;
    void exportProgressed(double fraction) override;
    void exportFinished(const std::string& title, const std::filesystem::path& album) override;
    void clearBadge() override;

    /// Grows with each start and each finish of an export.
    std::int64_t generation() const { return generation_; }

private:
    void postNotification(const std::string& title, const std::filesystem::path& album);

    const std::shared_ptr<NotificationCentering> center_;
    const std::shared_ptr<ApplicationPresenting> application_;
    bool askedForAuthorization_ = false;
    std::int64_t generation_ = 0;
};

} // namespace quillbook
