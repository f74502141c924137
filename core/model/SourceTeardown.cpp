#include "core/model/SourceTeardown.h"

#include "core/records/Cancellation.h"

#include <utility>

namespace quillbook {

void SourceTeardown::close() noexcept {
    const std::function<void()> teardown = std::exchange(teardown_, nullptr);
    if (!teardown) return;
    try {
        teardown();
    } catch (...) { // Also runs in a destructor, and the source counts as closed either way.
        return;
    }
}

namespace {

/// A password as sources take it, overwritten at the end.
struct LentPassword {
    explicit LentPassword(const std::optional<SecretText>& secret) {
        if (secret) text = secret->text();
    }
    ~LentPassword() {
        if (text) overwrite(*text);
    }
    LentPassword(const LentPassword&) = delete;
    LentPassword& operator=(const LentPassword&) = delete;

    std::optional<std::string> text;
};

} // namespace

OpenedSource openSource(MessageSourceProviding& provider, const MessageSource& source,
                        const std::optional<SecretText>& password, const std::stop_token& stop) {
    const LentPassword lent(password);
    // Made first: once the source is open, nothing may fail before somebody answers for closing it.
    const auto teardown = std::make_shared<SourceTeardown>();
    PreparedSource prepared = provider.prepare(source, lent.text, stop);
    teardown->arm(std::move(prepared.teardown));
    throwIfCancelled(stop);
    return {std::move(prepared.store), std::move(prepared.exporter), teardown};
}

} // namespace quillbook
