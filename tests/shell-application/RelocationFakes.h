#pragma once

#include "core/records/DescribedError.h"
#include "shell/application/Relocation.h"
#include "tests/support/ModelFakes.h"

#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillbook::test {

/// Writes down what the flow does; chooses the buttons that the test put down, else the last.
class FakeRelocationHost final : public RelocationHosting {
public:
    std::size_t show(const Alert& alert) override {
        calls.emplace_back("alert");
        alerts.push_back(alert);
        if (answers.empty()) return alert.buttons.size() - 1;
        const std::size_t answer = answers.front();
        answers.pop_front();
        return answer;
    }
    bool exists(const std::filesystem::path& file) override { return existing == file; }
    void copyBundle(const std::filesystem::path& from, const std::filesystem::path& to) override {
        calls.push_back("copy " + from.string() + " to " + to.string());
        if (copyFailure) throw SpokenError(*copyFailure);
    }
    void openNewInstance(const std::filesystem::path& bundle, std::function<void()> completion) override {
        calls.push_back("open " + bundle.string());
        completed = std::move(completion);
    }
    void reveal(const std::filesystem::path& file) override { calls.push_back("reveal " + file.string()); }
    void terminate() override { calls.emplace_back("terminate"); }

    std::deque<std::size_t> answers;
    std::optional<std::filesystem::path> existing;
    std::optional<std::string> copyFailure;
    std::vector<Alert> alerts;
    std::vector<std::string> calls;
    std::function<void()> completed;
};

} // namespace quillbook::test
