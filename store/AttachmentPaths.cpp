#include "store/AttachmentPaths.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace quillbook {
namespace {

constexpr std::string_view messagesPrefix = "~/Library/Messages/";
// As many as the kernel follows in one path (path_resolution(7)).
constexpr int mostLinks = 40;

/// Follows a path as the kernel would, one component at a time, so that ".." is the parent of what a link
/// before it leads to.
class PathWalk {
public:
    /// The path without links and dots, or nothing.
    std::optional<std::string> resolve(std::string_view absolutePath) {
        pushComponents(absolutePath);
        while (!pending_.empty()) {
            const std::string component = std::move(pending_.back());
            pending_.pop_back();
            if (!take(component)) return std::nullopt;
        }
        return resolved_.empty() ? "/" : resolved_;
    }

private:
    void pushComponents(std::string_view path) {
        while (!path.empty()) {
            const auto slash = path.rfind('/');
            const std::string_view last = path.substr(slash == std::string_view::npos ? 0 : slash + 1);
            if (!last.empty() && last != ".") pending_.emplace_back(last);
            path = path.substr(0, slash == std::string_view::npos ? 0 : slash);
        }
    }

    bool take(const std::string& component) {
        if (component == "..") {
            resolved_.resize(resolved_.empty() ? 0 : resolved_.rfind('/'));
            return true;
        }
        const std::string next = resolved_ + '/' + component;
        struct stat status {};
        if (::lstat(next.c_str(), &status) != 0) {
            if (errno != ENOENT && errno != ENOTDIR) return false;
        } else if (S_ISLNK(status.st_mode)) {
            return follow(next);
        }
        resolved_ = next;
        return true;
    }

    bool follow(const std::string& link) {
        char target[PATH_MAX];
        const ssize_t length = ::readlink(link.c_str(), target, sizeof target);
        if (length <= 0 || static_cast<std::size_t>(length) == sizeof target || ++links_ > mostLinks)
            return false;
        if (target[0] == '/') resolved_.clear();
        pushComponents({target, static_cast<std::size_t>(length)});
        return true;
    }

    std::string resolved_;             ///< Without the last slash; empty for "/".
    std::vector<std::string> pending_; ///< The components still to be taken, the next one last.
    int links_ = 0;
};

/// Nothing also for what no file can be called: longer than the system takes, or with a zero byte, which
/// would cut it short.
std::optional<std::string> resolved(const std::filesystem::path& path) {
    std::error_code failure;
    const std::string start =
        path.is_absolute() ? "/" : std::filesystem::current_path(failure).string() + '/';
    const std::string& text = path.native();
    if (failure || text.size() >= PATH_MAX || text.find('\0') != std::string::npos) return std::nullopt;
    return PathWalk().resolve(start + text);
}

/// What an absolute path means below a Messages folder, wherever that folder lies.
std::string_view belowAnyMessagesFolder(std::string_view path) {
    constexpr std::string_view folder = "/Library/Messages/";
    const auto found = path.rfind(folder);
    if (found != std::string_view::npos) return path.substr(found + folder.size());
    const auto end = path.find_last_not_of('/');
    if (end == std::string_view::npos) return {};
    path = path.substr(0, end + 1);
    return path.substr(path.rfind('/') + 1);
}

/// The segments of a path that stays below its start, or nothing.
std::optional<std::vector<std::string_view>> segmentsBelow(std::string_view path) {
    std::vector<std::string_view> segments;
    while (!path.empty()) {
        const auto slash = std::min(path.find('/'), path.size());
        const std::string_view segment = path.substr(0, slash);
        path.remove_prefix(std::min(slash + 1, path.size()));
        if (segment.empty() || segment == ".") continue;
        if (segment != "..") {
            segments.push_back(segment);
        } else if (segments.empty()) {
            return std::nullopt;
        } else {
            segments.pop_back();
        }
    }
    return segments;
}

} // namespace

bool isInsideFolder(const std::filesystem::path& root, const std::filesystem::path& candidate) {
    const auto folder = resolved(root);
    const auto file = resolved(candidate);
    if (!folder || !file) return false;
    if (*folder == *file || *folder == "/") return true;
    // The slash keeps out a sibling folder whose name merely begins alike.
    const std::string start = *folder + '/';
    return file->compare(0, start.size(), start) == 0;
}

std::string expandedHome(std::string_view storedPath, const std::filesystem::path& home) {
    const bool isOwnHome =
        !storedPath.empty() && storedPath[0] == '~' && (storedPath.size() == 1 || storedPath[1] == '/');
    return isOwnHome ? home.native() + std::string(storedPath.substr(1)) : std::string(storedPath);
}

std::optional<std::string> normalizedMessagesPath(std::string_view storedPath) {
    if (storedPath.find('\0') != std::string_view::npos) return std::nullopt;
    if (storedPath.substr(0, messagesPrefix.size()) == messagesPrefix) {
        storedPath.remove_prefix(messagesPrefix.size());
    } else if (!storedPath.empty() && storedPath.front() == '/') {
        storedPath = belowAnyMessagesFolder(storedPath);
    }
    const auto segments = segmentsBelow(storedPath);
    if (!segments || segments->empty()) return std::nullopt;
    std::string path;
    for (const std::string_view segment : *segments) {
        if (!path.empty()) path += '/';
        path += segment;
    }
    return path;
}

} // namespace quillbook
