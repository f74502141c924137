#include "store/LocalLibraryAttachmentLocator.h"

#include "store/AttachmentPaths.h"

#include <string_view>
#include <utility>

namespace quillbook {
namespace {

constexpr std::string_view messagesPrefix = "~/Library/Messages/";

bool isAbsolute(std::string_view path) {
    return !path.empty() && path.front() == '/';
}

bool isThere(const std::filesystem::path& file) {
    std::error_code failure;
    return std::filesystem::exists(file, failure);
}

} // namespace

LocalLibraryAttachmentLocator::LocalLibraryAttachmentLocator(std::filesystem::path messagesRoot,
                                                             std::filesystem::path home)
    : messagesRoot_(std::move(messagesRoot)), home_(std::move(home)) {}

std::optional<std::filesystem::path> LocalLibraryAttachmentLocator::locate(const std::string& storedPath) {
    if (!isAbsolute(storedPath)) {
        std::string_view relative = storedPath;
        if (relative.substr(0, messagesPrefix.size()) == messagesPrefix)
            relative.remove_prefix(messagesPrefix.size());
        auto candidate = belowRoot(relative);
        if (isInsideFolder(messagesRoot_, candidate) && isThere(candidate)) return candidate;
    }
    const std::string expanded = expandedHome(storedPath, home_);
    std::filesystem::path candidate =
        isAbsolute(expanded) ? std::filesystem::path(expanded) : belowRoot(expanded);
    if (!isInsideFolder(messagesRoot_, candidate)) return std::nullopt;
    return candidate;
}

std::filesystem::path LocalLibraryAttachmentLocator::belowRoot(std::string_view relativePath) const {
    // Joined as texts: the rest of a stored path may begin with a slash and would then take the root's place.
    return messagesRoot_.native() + '/' + std::string(relativePath);
}

} // namespace quillbook
