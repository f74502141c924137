#pragma once

#include "platform/FileLock.h"

#include <cstddef>
#include <filesystem>
#include <optional>

namespace quillbook {

/// The private folder of one opened backup, for the owner alone (octal 700): everything that was decrypted
/// lies in it and goes with it. A locked marker ".in-use" tells other processes that somebody is alive.
class WorkingDirectory {
public:
    /// Makes "Quillbook-prepared-" and a fresh UUID in `temporaryDirectory`, which is made too if it is
    /// missing. Throws FileError.
    explicit WorkingDirectory(const std::filesystem::path& temporaryDirectory);
    ~WorkingDirectory();
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;

    /// Resolved: no symbolic link stands in it.
    const std::filesystem::path& path() const { return path_; }
    /// Removes it with all in it, as far as the system lets it. Safe to call twice; use from one thread at a
    /// time.
    void remove() noexcept;

private:
    std::filesystem::path path_;
    std::optional<FileLock> lock_; ///< Absent where the file system has no locks; that is no failure.
};

/// Removes the working directories below `temporaryDirectory` that no living process uses: those that a crash
/// or a loss of power left. Returns how many. Never throws; safe from any thread.
std::size_t removeStaleWorkingDirectories(const std::filesystem::path& temporaryDirectory);

/// Whether this process counts the folder among those that it is using.
bool isActiveWorkingDirectory(const std::filesystem::path& folder);

} // namespace quillbook
