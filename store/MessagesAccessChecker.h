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

    explicit MessagesAccessChecker(MessagesPaths paths, URLOpener openURL = {});

    MessagesAccessStatus checkAccess(std::stop_token stop) override;
    void openPrivacySettings() override;

private:
    MessagesPaths paths_;
    URLOpener openURL_;
};

} // namespace quillbook
