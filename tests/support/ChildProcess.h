#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include <sys/types.h>

namespace quillbook::test {

/// Runs `body` in a process of its own, where it may change limits, users and mounts; gives the text that it
/// returned, or says how it ended otherwise. By agreement an empty text is success.
std::string runInChild(const std::function<std::string()>& body);

/// Starts `body` in a process of its own and comes back at once.
pid_t startChild(const std::function<void()>& body);

/// Waits for a child's end; true if it left by itself with success.
bool awaitChild(pid_t child);

/// For use within a child: gives it mounts that end with it. False where the system does not allow that.
bool enterPrivateMounts();

/// For use within a child with mounts of its own: an empty file system of so many bytes at an existing
/// folder, while it lives.
class SmallDisk {
public:
    SmallDisk(std::filesystem::path folder, std::size_t bytes);
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    /// False where the system does not allow to mount.
    bool isMounted() const { return isMounted_; }

private:
    std::filesystem::path folder_;
    bool isMounted_;
};

/// What room a check is given: a disk of so many bytes, or in its place files of no more than so many.
struct SmallRoom {
    std::size_t disk;
    std::size_t file;
};

/// Runs `check` in a process of its own, with an empty file system at `folder` that has little room. Where
/// the system does not allow to mount one, no file can grow beyond the room's size for one, which fails a
/// writer as a full disk does.
std::string runOnSmallDisk(const std::filesystem::path& folder, SmallRoom room,
                           const std::function<std::string()>& check);

/// For use within a child: from now on a system call whose given argument has that value fails with `error`,
/// and does nothing. False where the system does not allow such filters.
bool failSystemCall(int call, unsigned int argument, std::uint32_t value, int error);

/// For use within a child: goes on as a user whom file permissions bind.
bool becomeOrdinaryUser();

} // namespace quillbook::test
