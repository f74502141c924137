#include "platform/FileCloning.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillbook {

bool cloneFile(const std::filesystem::path& source, const std::filesystem::path& destination) {
    const int from = ::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (from < 0) return false;
    struct stat status {};
    if (::fstat(from, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(from);
        return false;
    }
    const int to = ::open(destination.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
    if (to < 0) {
        ::close(from);
        return false;
    }
    bool isCloned = ::ioctl(to, FICLONE, from) == 0;
    ::close(from);
    isCloned = ::close(to) == 0 && isCloned;
    if (!isCloned) ::unlink(destination.c_str());
    return isCloned;
}

} // namespace quillbook
