#include "backup/BackupAttachmentLocator.h"

#include <algorithm>
#include <string_view>

namespace quillbook {
namespace {

constexpr const char* attachmentDomain = "MediaDomain";

/// The path inside the domain, whose root is the home folder of the device's user.
std::string pathInDomain(std::string_view storedPath) {
    for (const std::string_view home : {"~/", "/var/mobile/", "/private/var/mobile/"}) {
        if (storedPath.starts_with(home)) return std::string(storedPath.substr(home.size()));
    }
    return std::string(storedPath.substr(std::min(storedPath.find_first_not_of('/'), storedPath.size())));
}

} // namespace

std::optional<std::filesystem::path> BackupAttachmentLocator::locate(const std::string& storedPath) {
    const std::string path = pathInDomain(storedPath);
    if (path.empty()) return std::nullopt;
    try {
        return backup_->fileURL(attachmentDomain, path);
    } catch (const std::exception&) { // What cannot be had is missing, and the album says so.
        return std::nullopt;
    }
}

std::optional<std::filesystem::path> BackupAttachmentLocator::probe(const std::string& storedPath) {
    const std::string path = pathInDomain(storedPath);
    if (path.empty()) return std::nullopt;
    try {
        return backup_->storedFile(attachmentDomain, path);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

void BackupAttachmentLocator::release(const std::filesystem::path& file) {
    backup_->releaseFile(file);
}

} // namespace quillbook
