#include "recovery/CacheWalk.h"

#include <climits>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillbook {
namespace {

// However deep a tree is, no more of its folders are open at once.
constexpr std::size_t mostOpenFolders = 64;

struct FolderCloser {
    void operator()(DIR* folder) const { ::closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, FolderCloser>;

OpenFolder openFolder(int parent, const char* name, int linkFlags) {
    const int descriptor = ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | linkFlags);
    if (descriptor < 0) return nullptr;
    OpenFolder folder(::fdopendir(descriptor));
    if (!folder) ::close(descriptor);
    return folder;
}

/// What tells a folder from another that takes its name.
using FolderIdentity = std::pair<dev_t, ino_t>;

std::optional<FolderIdentity> identity(DIR* folder) {
    struct stat status {};
    if (::fstat(::dirfd(folder), &status) != 0) return std::nullopt;
    return FolderIdentity(status.st_dev, status.st_ino);
}

class Walk {
public:
    Walk(const std::function<bool(std::string_view)>& isWanted,
         const std::function<void(const CachedFile&)>& take)
        : isWanted_(isWanted), take_(take) {}

    void run(const std::filesystem::path& root) {
        path_ = root.native();
        enter(openFolder(AT_FDCWD, path_.c_str(), 0));
        while (!levels_.empty())
            step();
    }

private:
    /// A folder on the way down to the present one. The way is a list of our own and no recursion: a hostile
    /// tree may be deeper than the stack.
    struct Level {
        OpenFolder folder; ///< Empty while too many below it are open.
        std::size_t pathLength = 0;
        std::vector<std::string> subfolders;    ///< Still to be walked.
        std::optional<FolderIdentity> identity; ///< Of one that was closed.
    };

    void step() {
        Level& level = levels_.back();
        path_.resize(level.pathLength);
        if (level.subfolders.empty() || !isOpen(level)) {
            levels_.pop_back();
            return;
        }
        const std::string name = std::move(level.subfolders.back());
        level.subfolders.pop_back();
        appendToPath(name);
        if (path_.size() < PATH_MAX) enter(openFolder(::dirfd(level.folder.get()), name.c_str(), O_NOFOLLOW));
    }

    void enter(OpenFolder folder) {
        if (!folder) return;
        Level& level = levels_.emplace_back();
        level.folder = std::move(folder);
        level.pathLength = path_.size();
        while (const dirent* entry = ::readdir(level.folder.get()))
            look(level, *entry);
        if (levels_.size() > mostOpenFolders) close(levels_[levels_.size() - mostOpenFolders - 1]);
    }

    static void close(Level& level) {
        if (level.folder) level.identity = identity(level.folder.get());
        level.folder.reset();
    }

    /// Opens it again where it was closed; false where it has gone or another folder stands in its place.
    bool isOpen(Level& level) {
        if (level.folder) return true;
        const bool isRoot = &level == &levels_.front();
        level.folder = openFolder(AT_FDCWD, path_.c_str(), isRoot ? 0 : O_NOFOLLOW);
        return level.folder && level.identity && identity(level.folder.get()) == level.identity;
    }

    void look(Level& level, const dirent& entry) {
        if (entry.d_name[0] == '.') return;
        switch (entry.d_type) {
        case DT_DIR:
            level.subfolders.emplace_back(entry.d_name);
            return;
        case DT_REG:
            if (isWanted_(entry.d_name)) takeFile(entry.d_name, statusOf(level, entry.d_name));
            return;
        case DT_UNKNOWN: // Some file systems do not tell the type in a listing.
            lookClosely(level, entry.d_name);
            return;
        default:
            return;
        }
    }

    void lookClosely(Level& level, const char* name) {
        const auto status = statusOf(level, name);
        if (status && S_ISDIR(status->st_mode)) level.subfolders.emplace_back(name);
        if (isWanted_(name)) takeFile(name, status);
    }

    static std::optional<struct stat> statusOf(const Level& level, const char* name) {
        struct stat status {};
        if (::fstatat(::dirfd(level.folder.get()), name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            return std::nullopt;
        return status;
    }

    /// The type counts as it is now: an entry may have become another one since it was listed.
    void takeFile(const char* name, const std::optional<struct stat>& status) {
        if (!status || !S_ISREG(status->st_mode) || status->st_size < 1) return;
        const std::size_t folderLength = path_.size();
        appendToPath(name);
        if (path_.size() < PATH_MAX)
            take_(CachedFile{.url = path_, .size = status->st_size, .basename = name});
        path_.resize(folderLength);
    }

    void appendToPath(std::string_view name) {
        if (path_.back() != '/') path_ += '/';
        path_ += name;
    }

    const std::function<bool(std::string_view)>& isWanted_;
    const std::function<void(const CachedFile&)>& take_;
    std::string path_; ///< Of the present folder.
    std::vector<Level> levels_;
};

} // namespace

void walkCache(const std::filesystem::path& root, const std::function<bool(std::string_view)>& isWanted,
               const std::function<void(const CachedFile&)>& take) {
    Walk(isWanted, take).run(root);
}

} // namespace quillbook
