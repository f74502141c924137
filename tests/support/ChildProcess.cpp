#include "tests/support/ChildProcess.h"

#include "tests/support/FileSizeLimit.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillbook::test {
namespace {

constexpr uid_t nobody = 65'534;

std::string guarded(const std::function<std::string()>& body) {
    try {
        return body();
    } catch (const std::exception& error) {
        return std::string("threw: ") + error.what();
    }
}

bool writeText(const char* file, const std::string& text) {
    const int descriptor = ::open(file, O_WRONLY | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool isWritten = ::write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    ::close(descriptor);
    return isWritten;
}

std::string readAll(int descriptor) {
    std::string text;
    std::array<char, 4'096> block{};
    for (ssize_t count = 1; count > 0; text.append(block.data(), static_cast<std::size_t>(count))) {
        count = ::read(descriptor, block.data(), block.size());
        if (count <= 0) break;
    }
    return text;
}

} // namespace

pid_t startChild(const std::function<void()>& body) {
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child < 0) throw std::runtime_error("fork failed");
    if (child > 0) return child;
    try {
        body();
    } catch (const std::exception&) {
        ::_exit(1);
    }
    ::_exit(0);
}

bool awaitChild(pid_t child) {
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string runInChild(const std::function<std::string()>& body) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throw std::runtime_error("pipe failed");
    const pid_t child = startChild([&] {
        const std::string text = guarded(body);
        if (::write(ends[1], text.data(), text.size()) != static_cast<ssize_t>(text.size())) ::_exit(1);
    });
    ::close(ends[1]);
    const std::string text = readAll(ends[0]);
    ::close(ends[0]);
    return awaitChild(child) ? text : text + " (the child process failed)";
}

bool enterPrivateMounts() {
    const auto user = ::geteuid();
    const auto group = ::getegid();
    if (user == 0) {
        if (::unshare(CLONE_NEWNS) != 0) return false;
    } else {
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
        if (!writeText("/proc/self/setgroups", "deny")) return false;
        if (!writeText("/proc/self/uid_map", "0 " + std::to_string(user) + " 1")) return false;
        if (!writeText("/proc/self/gid_map", "0 " + std::to_string(group) + " 1")) return false;
    }
    return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

SmallDisk::SmallDisk(std::filesystem::path folder, std::size_t bytes) : folder_(std::move(folder)) {
    const std::string size = "size=" + std::to_string(bytes);
    isMounted_ = ::mount("tmpfs", folder_.c_str(), "tmpfs", 0, size.c_str()) == 0;
}

SmallDisk::~SmallDisk() {
    if (isMounted_) ::umount2(folder_.c_str(), MNT_DETACH);
}

std::string runOnSmallDisk(const std::filesystem::path& folder, SmallRoom room,
                           const std::function<std::string()>& check) {
    return runInChild([&] {
        if (enterPrivateMounts()) {
            const SmallDisk disk(folder, room.disk);
            if (disk.isMounted()) return check();
        }
        const FileSizeLimit limit(room.file);
        return check();
    });
}

bool failSystemCall(int call, unsigned int argument, std::uint32_t value, int error) {
    const auto number = static_cast<std::uint32_t>(call);
    // Arguments are of 64 bits; on the little-endian machines that this runs on the lower half comes first.
    const auto argumentOffset =
        static_cast<std::uint32_t>(offsetof(seccomp_data, args) + argument * sizeof(std::uint64_t));
    const auto failure = static_cast<std::uint32_t>(SECCOMP_RET_ERRNO) | static_cast<std::uint32_t>(error);
    std::array<sock_filter, 6> steps = {{
        {BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)},
        {BPF_JMP | BPF_JEQ | BPF_K, 0, 3, number},
        {BPF_LD | BPF_W | BPF_ABS, 0, 0, argumentOffset},
        {BPF_JMP | BPF_JEQ | BPF_K, 0, 1, value},
        {BPF_RET | BPF_K, 0, 0, failure},
        {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ALLOW},
    }};
    const sock_fprog program{static_cast<unsigned short>(steps.size()), steps.data()};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return false;
    return ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

bool becomeOrdinaryUser() {
    if (::geteuid() != 0) return true;
    return ::setgid(nobody) == 0 && ::setuid(nobody) == 0;
}

} // namespace quillbook::test
