#pragma once

#include "core/interfaces/MessagesAccessChecking.h"
#include "store/MessagesPaths.h"

#include <functional>
#include <string>

namespace quillbook {

/// Finds out whether the Messages library may be read, with one statement that reads no message. Keeps no
/// state.
class MessagesAccessChecker final : public MessagesAccessChecking {
public:
    /// Opens a URL with the desktop's program for it.
    using URLOpener = std::function<void(const std::string& url)>;

    /// Opens a database and reads a little of it; throws what that fails with.
    using DatabaseProbe = std::function<void(const std::filesystem::path& database)>;

    explicit MessagesAccessChecker(MessagesPaths paths, URLOpener openURL = {},
                                   DatabaseProbe probe = askOneThing);
    /// The probe of real databases: one statement that reads no message.
    static void askOneThing(const std::filesystem::path& database);

    MessagesAccessStatus checkAccess(std::stop_token stop) override;
    void openPrivacySettings() override;

private:
    MessagesPaths paths_;
    URLOpener openURL_;
    DatabaseProbe probe_;
};

} // namespace quillbook
