#pragma once

#include <stop_token>
#include <string>

namespace quillbook {

/// Whether the Messages library of this machine can be read.
struct MessagesAccessStatus {
    enum class Kind {
        checking,        ///< A check is running.
        granted,         ///< The database opened and answered.
        denied,          ///< The database is there, or may be, and can't be read.
        databaseMissing, ///< The folder can be read and holds no database.
        failed,          ///< Something else went wrong; `message` says what.
    };
    Kind kind = Kind::checking;
    std::string message; ///< Only with `failed`.

    static MessagesAccessStatus failed(std::string message) { return {Kind::failed, std::move(message)}; }
    bool isGranted() const { return kind == Kind::granted; }
    bool operator==(const MessagesAccessStatus&) const = default;
};

class MessagesAccessChecking {
public:
    virtual ~MessagesAccessChecking() = default;
    /// May be slow; never fails. Called off the main thread.
    virtual MessagesAccessStatus checkAccess(std::stop_token stop) = 0;
    /// Opens the system's pane for the access, where there is one. Immediate.
    virtual void openPrivacySettings() = 0;
};

} // namespace quillbook
