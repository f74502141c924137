#pragma once

#include "tests/support/TemporaryFolder.h"

#include <functional>
#include <string>

#include <sys/types.h>

namespace quillbook::test {

/// A message bus of the test's own with a profile of its own, which end with it, as do all programs that the
/// bus started.
class PrivateBus {
public:
    enum class Services { none, evolution };

    /// Throws std::runtime_error where the bus does not start.
    explicit PrivateBus(Services services);
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    const std::string& address() const { return address_; }
    const TemporaryFolder& home() const { return home_; }
    /// Runs `body` in a process within the bus's session; see `runInChild`.
    std::string run(const std::function<std::string()>& body) const;

private:
    TemporaryFolder home_;
    std::string address_;
    pid_t daemon_ = -1;
};

/// For use within a child: the environment of a session in that home, on that bus; an empty address is none.
void enterSession(const std::filesystem::path& home, const std::string& address);

/// Owns a name on a bus and never answers anybody, while it lives.
class SilentService {
public:
    SilentService(const PrivateBus& bus, const std::string& name);
    ~SilentService();
    SilentService(const SilentService&) = delete;
    SilentService& operator=(const SilentService&) = delete;

private:
    pid_t process_ = -1;
};

} // namespace quillbook::test
