#pragma once

#include "core/interfaces/MessageSourceProviding.h"
#include "core/text/SecretText.h"

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

namespace quillbook {

/// Closes one source exactly once: when told to, else at its own end. So no source that was opened stays open
/// because nobody was left to take it.
class SourceTeardown {
public:
    explicit SourceTeardown(std::function<void()> teardown = {}) : teardown_(std::move(teardown)) {}
    ~SourceTeardown() { close(); }
    SourceTeardown(const SourceTeardown&) = delete;
    SourceTeardown& operator=(const SourceTeardown&) = delete;

    /// What `close` will run. Only for one that has nothing to close yet.
    void arm(std::function<void()> teardown) noexcept { teardown_ = std::move(teardown); }
    /// Runs the teardown the first time, and nothing after that. What it throws is lost: a closed source
    /// reports to nobody.
    void close() noexcept;

private:
    std::function<void()> teardown_;
};

/// A prepared source on its way to the model.
struct OpenedSource {
    std::shared_ptr<MessagesStore> store;
    std::shared_ptr<ExportRunning> exporter;
    std::shared_ptr<SourceTeardown> teardown;
};

/// Prepares a source in the background. One that is ready only after `stop` was requested is closed at once,
/// without waiting for a main thread that may have ended, and CancellationError is thrown.
OpenedSource openSource(MessageSourceProviding& provider, const MessageSource& source,
                        const std::optional<SecretText>& password, const std::stop_token& stop);

} // namespace quillbook
