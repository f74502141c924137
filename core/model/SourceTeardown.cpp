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

OpenedSource openSource(MessageSourceProviding& provider, const MessageSource& source,
                        const std::optional<std::string>& password, const std::stop_token& stop) {
    // Made first: once the source is open, nothing may fail before somebody answers for closing it.
    const auto teardown = std::make_shared<SourceTeardown>();
    PreparedSource prepared = provider.prepare(source, password, stop);
    teardown->arm(std::move(prepared.teardown));
    throwIfCancelled(stop);
    return {std::move(prepared.store), std::move(prepared.exporter), teardown};
}

} // namespace quillbook
