#include "tests/desktop/RunningProgram.h"

#include <QEventLoop>
#include <QProcess>
#include <QTimer>
#include <array>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillbook::test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto limit = std::chrono::seconds(20);

} // namespace

RunningProgram::RunningProgram(std::vector<std::string> command) {
    std::vector<char*> arguments;
    for (auto& argument : command) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
    const pid_t parent = ::getpid();
    process_ = ::fork();
    if (process_ < 0) throw std::runtime_error("fork failed");
    if (process_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        constexpr int agreedDescriptor = 3;
        if (ends[1] == agreedDescriptor) ::fcntl(agreedDescriptor, F_SETFD, 0);
        if (ends[1] != agreedDescriptor) ::dup2(ends[1], agreedDescriptor);
        if (::getppid() == parent) ::execvp(arguments.front(), arguments.data());
        ::_exit(127);
    }
    ::close(ends[1]);
    pipe_ = ends[0];
}

RunningProgram::~RunningProgram() {
    stop();
    ::close(pipe_);
}

std::string RunningProgram::line() const {
    std::string text;
    const auto end = Clock::now() + limit;
    while (Clock::now() < end) {
        pollfd readable{pipe_, POLLIN, 0};
        if (::poll(&readable, 1, 100) <= 0) continue;
        char letter = 0;
        if (::read(pipe_, &letter, 1) != 1) break;
        if (letter == '\n') return text;
        text += letter;
    }
    throw std::runtime_error("a program did not come up");
}

void RunningProgram::stop() {
    if (process_ == 0) return;
    ::kill(process_, SIGTERM);
    const auto end = Clock::now() + std::chrono::seconds(3);
    while (::waitpid(process_, nullptr, WNOHANG) == 0) {
        if (Clock::now() > end) ::kill(process_, SIGKILL);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    process_ = 0;
}

std::string outputOf(const std::vector<std::string>& command) {
    QProcess process;
    QStringList arguments;
    for (const auto& argument : command) {
        arguments << QString::fromStdString(argument);
    }
    const QString program = arguments.takeFirst();
    process.start(program, arguments);
    if (!await([&] { return process.state() == QProcess::NotRunning; })) throw std::runtime_error(command[0]);
    return process.readAllStandardOutput().toStdString();
}

bool await(const std::function<bool()>& condition) {
    if (condition()) return true;
    const auto end = Clock::now() + limit;
    bool holds = false;
    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
        holds = condition();
        if (holds || Clock::now() > end) loop.quit();
    });
    timer.start(std::chrono::milliseconds(2));
    loop.exec();
    return holds;
}

} // namespace quillbook::test
