#pragma once

#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace quillbook::test {

/// A program that runs beside the test and ends with it, also where the test dies.
class RunningProgram {
public:
    /// Throws where it cannot be started. The program finds a pipe to us as its descriptor 3.
    explicit RunningProgram(std::vector<std::string> command);
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    /// The next line that the program writes to descriptor 3; throws where none comes in time.
    std::string line() const;
    /// Ends it and waits for that.
    void stop();

private:
    pid_t process_ = 0;
    int pipe_ = -1;
};

/// Runs a program to its end, while the event loop turns; gives what it wrote to its output.
std::string outputOf(const std::vector<std::string>& command);

/// Turns the event loop until the condition holds; false where it does not within a generous limit.
bool await(const std::function<bool()>& condition);

} // namespace quillbook::test
