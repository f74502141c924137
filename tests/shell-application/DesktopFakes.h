#pragma once

#include "shell/desktop/ApplicationPresenting.h"
#include "shell/desktop/FileRevealing.h"
#include "shell/desktop/NotificationCentering.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace quillbook::test {

/// Writes down what happens to the application's icon and window.
class FakeApplication final : public ApplicationPresenting {
public:
    void showBadge(int percentage) override { calls.push_back("badge " + std::to_string(percentage)); }
    void clearBadge() override { calls.emplace_back("clear badge"); }
    void requestAttention() override { calls.emplace_back("attention"); }
    bool isActive() const override { return active; }
    void activate() override { calls.emplace_back("activate"); }

    bool active = false;
    std::vector<std::string> calls;
};

/// A notification centre that answers when the test says so.
class FakeNotificationCenter final : public NotificationCentering {
public:
    void requestAuthorization(std::function<void(bool granted)> answer) override {
        authorizationRequests.push_back(std::move(answer));
    }
    void authorization(std::function<void(Authorization)> answer) override {
        authorizationQuestions.push_back(std::move(answer));
    }
    void add(const NotificationRequest& request, std::function<void(bool taken)> answer) override {
        added.push_back(request);
        answer(isTaking);
    }
    void onResponse(Response given) override { response = std::move(given); }

    /// Answers every question that waits.
    void answer(Authorization authorization) {
        for (const auto& question : std::exchange(authorizationQuestions, {}))
            question(authorization);
    }

    bool isTaking = true;
    std::vector<std::function<void(bool)>> authorizationRequests;
    std::vector<std::function<void(Authorization)>> authorizationQuestions;
    std::vector<NotificationRequest> added;
    Response response;
};

/// Writes down what was shown.
class FakeFiles final : public FileRevealing {
public:
    void reveal(const std::filesystem::path& file) override { revealed.push_back(file); }
    void open(const std::filesystem::path& file) override { opened.push_back(file); }

    std::vector<std::filesystem::path> revealed;
    std::vector<std::filesystem::path> opened;
};

} // namespace quillbook::test
