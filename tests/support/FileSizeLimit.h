#pragma once

#include <csignal>

#include <sys/resource.h>

namespace quillbook::test {

/// While it lives, no file of this process grows beyond a size: writes fail as they do on a full disk, also
/// for the superuser.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : earlierHandler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &earlier_);
        const rlimit lowered{bytes, earlier_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &lowered);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &earlier_);
        std::signal(SIGXFSZ, earlierHandler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*earlierHandler_)(int);
    rlimit earlier_{};
};

} // namespace quillbook::test
