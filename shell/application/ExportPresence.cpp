#include "shell/application/ExportPresence.h"

#include "core/text/GraphemeClusters.h"
#include "core/text/Localization.h"
#include "platform/UUID.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quillbook {
namespace {

/// A conversation's name is as long as whoever named it liked.
constexpr std::size_t longestTitleBytes = 256;

} // namespace

ExportPresence::ExportPresence(std::shared_ptr<NotificationCentering> center,
                               std::shared_ptr<ApplicationPresenting> application)
    : center_(std::move(center)), application_(std::move(application)) {}

void ExportPresence::exportStarted() {
    ++generation_;
    clearBadge();
    if (std::exchange(askedForAuthorization_, true)) return;
    center_->requestAuthorization([](bool /*granted*/) {});
}

void ExportPresence::exportProgressed(double fraction) {
    constexpr double whole = 100;
    const double percentage = std::round(fraction * whole);
    if (percentage >= 1) application_->showBadge(static_cast<int>(std::min(percentage, whole)));
}

void ExportPresence::exportFinished(const std::string& title, const std::filesystem::path& album) {
    ++generation_;
    clearBadge();
    application_->requestAttention();
    if (!application_->isActive()) postNotification(title, album);
}

void ExportPresence::clearBadge() {
    application_->clearBadge();
}

void ExportPresence::postNotification(const std::string& title, const std::filesystem::path& album) {
    const NotificationRequest request{
        .identifier = uuidText(),
        .title = localized("Album ready"),
        .body = shortened(title, longestTitleBytes) + localized(" has been saved."),
        .information = {{archiveInformationKey, album.string()}},
    };
    const std::weak_ptr<NotificationCentering> weak = center_;
    center_->authorization([weak, request](NotificationCentering::Authorization authorization) {
        const auto center = weak.lock();
        if (center && authorization == NotificationCentering::Authorization::authorized)
            center->add(request, [](bool /*taken*/) {});
    });
}

} // namespace quillbook
