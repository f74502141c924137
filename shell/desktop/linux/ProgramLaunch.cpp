#include "shell/desktop/linux/ProgramLaunch.h"

#include <QSocketNotifier>
#include <csignal>
#include <functional>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillbook {
namespace {

/// The conditions a program starts under: our own signal handling and standard streams are not passed on.
class SpawnConditions {
public:
    SpawnConditions() {
        ::posix_spawn_file_actions_init(&files);
        ::posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        ::posix_spawn_file_actions_adddup2(&files, STDOUT_FILENO, STDERR_FILENO);
        ::posix_spawnattr_init(&attributes);
        sigset_t signals;
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes, &signals);
        ::sigaddset(&signals, SIGPIPE);
        ::posix_spawnattr_setsigdefault(&attributes, &signals);
        ::posix_spawnattr_setflags(&attributes,
                                   POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnConditions() {
        ::posix_spawn_file_actions_destroy(&files);
        ::posix_spawnattr_destroy(&attributes);
    }
    SpawnConditions(const SpawnConditions&) = delete;
    SpawnConditions& operator=(const SpawnConditions&) = delete;

    posix_spawn_file_actions_t files{};
    posix_spawnattr_t attributes{};
};

std::optional<pid_t> start(ProgramCommand command) {
    std::vector<char*> arguments;
    for (auto& argument : command) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    const SpawnConditions conditions;
    pid_t process = 0;
    const int error = ::posix_spawnp(&process, arguments.front(), &conditions.files, &conditions.attributes,
                                     arguments.data(), environ);
    return error == 0 ? std::optional(process) : std::nullopt;
}

bool hasSucceeded(pid_t process) {
    int status = 0;
    return ::waitpid(process, &status, WNOHANG) == process && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Calls `ended` once the process has ended; a descriptor of a process becomes readable then (pidfd_open(2)).
void followToItsEnd(pid_t process, QObject* context, std::function<void()> ended) {
    // The C library's own declaration of pidfd_open is not usable from C++ before glibc 2.37.
    const int descriptor = static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
    if (descriptor < 0) return;
    auto* notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, context);
    QObject::connect(notifier, &QObject::destroyed, [descriptor] { ::close(descriptor); });
    QObject::connect(notifier, &QSocketNotifier::activated, context, [notifier, ended = std::move(ended)] {
        notifier->setEnabled(false);
        notifier->deleteLater();
        ended();
    });
}

} // namespace

void launchFirstThatSucceeds(std::vector<ProgramCommand> commands, QObject* context) {
    while (!commands.empty()) {
        const auto process = start(commands.front());
        commands.erase(commands.begin());
        if (!process) continue;
        followToItsEnd(*process, context, [process = *process, rest = std::move(commands), context] {
            if (!hasSucceeded(process)) launchFirstThatSucceeds(rest, context);
        });
        return;
    }
}

} // namespace quillbook
