#pragma once

#include "core/interfaces/DeviceBackup.h"
#include "core/interfaces/ExportRunning.h"
#include "core/interfaces/MessagesStore.h"

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <variant>
#include <vector>

namespace quillbook {

/// This machine's own Messages library.
struct LocalMac {
    bool operator==(const LocalMac&) const = default;
};
/// A device that is plugged in and has no local backup.
struct ConnectedDeviceWithoutBackup {
    bool operator==(const ConnectedDeviceWithoutBackup&) const = default;
};
using MessageSourceKind = std::variant<LocalMac, DeviceBackup, ConnectedDeviceWithoutBackup>;

/// One place to read conversations from.
struct MessageSource {
    std::string id; ///< "local-mac", "connected-device" or a backup's id.
    std::string title;
    std::optional<std::string> subtitle;
    MessageSourceKind kind;
    bool requiresPassword = false;

    bool isLocalMac() const { return std::holds_alternative<LocalMac>(kind); }
    bool operator==(const MessageSource&) const = default;
};

/// A source that is open. Whoever holds it runs `teardown` exactly once, from any thread, and uses neither
/// part afterwards.
struct PreparedSource {
    std::shared_ptr<MessagesStore> store;
    std::shared_ptr<ExportRunning> exporter;
    std::function<void()> teardown;
};

class MessageSourceProviding {
public:
    virtual ~MessageSourceProviding() = default;
    /// May be slow; never fails. Called off the main thread.
    virtual std::vector<MessageSource> availableSources(std::stop_token stop) = 0;
    /// Opens a source. May be slow; called off the main thread. Throws a DescribedError or CancellationError.
    virtual PreparedSource prepare(const MessageSource& source, const std::optional<std::string>& password,
                                   std::stop_token stop) = 0;
};

} // namespace quillbook
