#include "platform/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillbook {

std::optional<FileLock> FileLock::take(const std::filesystem::path& file, Creation creation) {
    constexpr mode_t ownerReadsAndWrites = 0600;
    const int creating = creation == Creation::allowed ? O_CREAT : 0;
    // Neither a link is followed nor a pipe waited for.
    const int descriptor =
        ::open(file.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | creating, ownerReadsAndWrites);
    if (descriptor < 0) return std::nullopt;
    FileLock lock(descriptor);
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) return std::nullopt;
    // A umask can only have taken rights away.
    if (creating != 0) static_cast<void>(::fchmod(descriptor, ownerReadsAndWrites));
    return lock;
}

FileLock::~FileLock() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

} // namespace quillbook
