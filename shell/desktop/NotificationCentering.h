#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <variant>

namespace quillbook {

/// What a notification carries beside its words; the desktop gives it back when the notification is clicked.
using NotificationInformation = std::map<std::string, std::variant<std::string, std::int64_t>>;

struct NotificationRequest {
    std::string identifier; ///< Unique among all requests.
    std::string title;
    std::string body; ///< Plain text; a desktop that reads markup is given it escaped.
    NotificationInformation information;

    bool operator==(const NotificationRequest&) const = default;
};

/// The desktop's notifications. Main thread only; each answer comes on the main thread, later, or never where
/// the desktop never answers. No call waits.
class NotificationCentering {
public:
    enum class Authorization { notDetermined, denied, authorized };
    using Response =
        std::function<void(const NotificationInformation& information, std::function<void()> completed)>;

    virtual ~NotificationCentering() = default;
    /// Asks the user to allow notifications with alert and sound.
    virtual void requestAuthorization(std::function<void(bool granted)> answer) = 0;
    virtual void authorization(std::function<void(Authorization)> answer) = 0;
    /// Shows it at once, with the desktop's default sound and one default action. `answer` tells whether the
    /// desktop took it.
    virtual void add(const NotificationRequest& request, std::function<void(bool taken)> answer) = 0;
    /// Called each time the user clicks a notification of ours; `completed` is to be called in every case.
    virtual void onResponse(Response response) = 0;
};

} // namespace quillbook
