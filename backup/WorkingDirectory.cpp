#include "backup/WorkingDirectory.h"

#include "platform/FileError.h"
#include "platform/FolderAccess.h"
#include "platform/FolderCreation.h"
#include "platform/FolderMove.h"
#include "platform/UUID.h"

#include <algorithm>
#include <chrono>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quillbook {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view namePrefix = "Quillbook-prepared-";
/// Of a folder that is not marked yet. No listing shows it, and no sweep takes it for an abandoned one.
constexpr std::string_view unmarkedPrefix = ".Quillbook-preparing-";
constexpr const char* markerName = ".in-use";

/// The working directories that this process is using. Lives as long as the process: a folder may be taken
/// off the list while other objects of static duration end.
class ActiveWorkingDirectories {
public:
    static ActiveWorkingDirectories& ofThisProcess() {
        static auto* const directories = new ActiveWorkingDirectories;
        return *directories;
    }
    void add(const fs::path& folder) {
        const std::lock_guard guard(lock_);
        folders_.insert(folder);
    }
    void remove(const fs::path& folder) {
        const std::lock_guard guard(lock_);
        folders_.erase(folder);
    }
    std::set<fs::path> copy() {
        const std::lock_guard guard(lock_);
        return folders_;
    }

private:
    std::mutex lock_;
    std::set<fs::path> folders_;
};

fs::path standardised(const fs::path& folder) {
    std::error_code failure;
    const fs::path resolved = fs::weakly_canonical(folder, failure);
    return failure ? folder.lexically_normal() : resolved;
}

/// The standard library's removal gives up where an entry vanishes under its hands, so it may take several.
bool removeTree(const fs::path& folder) noexcept {
    constexpr int attempts = 100;
    std::error_code failure;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        fs::remove_all(folder, failure);
        if (!failure) return true;
    }
    return false;
}

/// The folders below the temporary one whose names begin so: real ones of this user, and no others, whoever
/// may write there.
std::vector<fs::path> ownFolders(const fs::path& temporaryDirectory, std::string_view prefix) {
    std::vector<fs::path> found;
    std::error_code failure;
    for (fs::directory_iterator entry(temporaryDirectory, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        const fs::path& folder = entry->path();
        if (folder.filename().string().starts_with(prefix) && isOwnFolder(folder)) found.push_back(folder);
    }
    return found;
}

/// A folder is marked within microseconds, or its process ended before.
bool wasNeverMarked(const fs::path& folder) {
    std::error_code failure;
    const auto changed = fs::last_write_time(folder, failure);
    return !failure && changed < fs::file_time_type::clock::now() - std::chrono::hours(1);
}

/// False while another process holds its marker, or where that cannot be told.
bool isAbandoned(const fs::path& folder) {
    std::error_code failure;
    const auto marker = fs::symlink_status(folder / markerName, failure);
    if (marker.type() == fs::file_type::not_found) return true;
    return FileLock::take(folder / markerName, FileLock::Creation::forbidden).has_value();
}

} // namespace

WorkingDirectory::WorkingDirectory(const fs::path& temporaryDirectory) {
    const std::string identifier = uuidText();
    const fs::path parent = standardised(temporaryDirectory);
    path_ = parent / (std::string(namePrefix) + identifier);
    ActiveWorkingDirectories::ofThisProcess().add(path_);
    createFolders(parent);
    const fs::path unmarked = parent / (std::string(unmarkedPrefix) + identifier);
    createPrivateFolder(unmarked);
    try {
        lock_ = FileLock::take(unmarked / markerName, FileLock::Creation::allowed);
        moveFolder(unmarked, path_);
    } catch (const FileError&) {
        removeTree(unmarked);
        throw;
    }
}

WorkingDirectory::~WorkingDirectory() {
    remove();
}

void WorkingDirectory::remove() noexcept {
    lock_.reset();
    removeTree(path_);
    ActiveWorkingDirectories::ofThisProcess().remove(path_);
}

std::size_t removeStaleWorkingDirectories(const fs::path& temporaryDirectory) {
    const fs::path parent = standardised(temporaryDirectory);
    const auto found = ownFolders(parent, namePrefix);
    const auto active = ActiveWorkingDirectories::ofThisProcess().copy();
    std::vector<fs::path> stale;
    for (const fs::path& folder : found) {
        if (!active.contains(folder) && isAbandoned(folder)) stale.push_back(folder);
    }
    for (const fs::path& folder : ownFolders(parent, unmarkedPrefix)) {
        if (wasNeverMarked(folder)) stale.push_back(folder);
    }
    return static_cast<std::size_t>(std::count_if(stale.begin(), stale.end(), removeTree));
}

bool isActiveWorkingDirectory(const fs::path& folder) {
    return ActiveWorkingDirectories::ofThisProcess().copy().contains(standardised(folder));
}

} // namespace quillbook
