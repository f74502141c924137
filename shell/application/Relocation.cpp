#include "shell/application/Relocation.h"

#include "core/records/DescribedError.h"
#include "core/text/Localization.h"

#include <utility>

namespace quillbook {
namespace {

constexpr std::size_t firstButton = 0;

} // namespace

bool needsRelocation(const std::filesystem::path& bundle) {
    const std::string& path = bundle.native();
    return path.find("/AppTranslocation/") != std::string::npos || path.rfind("/Volumes/", 0) == 0;
}

RelocationFlow::RelocationFlow(std::shared_ptr<RelocationHosting> host,
                               std::shared_ptr<MainThread> mainThread)
    : host_(std::move(host)), mainThread_(std::move(mainThread)) {}

void RelocationFlow::run(const std::filesystem::path& bundle) {
    const std::size_t answer = host_->show({
        .style = RelocationHosting::AlertStyle::critical,
        .message = localized("Move Quillbook to your Applications folder"),
        .informativeText =
            localized("macOS is running Quillbook from a temporary location, and it cannot be given "
                      "permission to read your messages from there.\n\nMove it to your Applications folder "
                      "and it will work normally. Nothing is lost: you can close this and drag the app onto "
                      "the Applications shortcut yourself."),
        .buttons = {localized("Move and Restart"), localized("Quit")},
    });
    if (answer != firstButton) return host_->terminate();
    try {
        if (!host_->exists(relocationTarget)) host_->copyBundle(bundle, relocationTarget);
    } catch (const std::exception& error) {
        return explainFailure(bundle, describe(error));
    }
    openTarget();
}

void RelocationFlow::openTarget() {
    // The host may keep the completion, which must not keep the host.
    const std::weak_ptr<RelocationHosting> weak = host_;
    host_->openNewInstance(relocationTarget, [weak, mainThread = mainThread_] {
        mainThread->post([weak] {
            if (const auto host = weak.lock()) host->terminate();
        });
    });
}

void RelocationFlow::explainFailure(const std::filesystem::path& bundle, const std::string& reason) {
    const std::size_t answer = host_->show({
        .style = RelocationHosting::AlertStyle::warning,
        .message = localized("Quillbook could not move itself"),
        .informativeText = localized("Drag Quillbook onto the Applications shortcut in the disk image, then "
                                     "open it from your Applications folder.\n\n(") +
                           reason + ")",
        .buttons = {localized("Show Me"), localized("Quit")},
    });
    if (answer == firstButton) host_->reveal(bundle);
    host_->terminate();
}

} // namespace quillbook
