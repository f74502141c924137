#include "recovery/RecoveryFolder.h"

#include "store/AttachmentPaths.h"

namespace quillbook {

namespace fs = std::filesystem;

fs::path recoveryRoot(const fs::path& applicationSupport) {
    return applicationSupport / "Quillbook" / "Recovered Attachments";
}

fs::path recoveryManifest(const fs::path& recoveryRoot) {
    return recoveryRoot / "recovery-manifest.json";
}

std::optional<fs::path> recoveryPlace(const fs::path& recoveryRoot, std::string_view relativeDestination) {
    // A path with a slash in front would take the root's place when it is joined.
    const fs::path relative = fs::path(relativeDestination).lexically_normal().relative_path();
    if (!relative.has_filename() || relative == ".") return std::nullopt;
    fs::path place = recoveryRoot / relative;
    if (!isInsideFolder(recoveryRoot, place)) return std::nullopt;
    // Followed like any location, since links within the root give the manifest other names.
    if (isInsideFolder(recoveryManifest(recoveryRoot), place)) return std::nullopt;
    return place;
}

} // namespace quillbook
