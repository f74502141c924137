#pragma once

#include "backup/SecretBytes.h"
#include "core/records/ConversationSummary.h"

#include <cstdint>
#include <map>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>

namespace quillbook {

/// The fields of one record of a keybag by their tags of four characters.
using KeybagFields = std::map<std::string, Data, std::less<>>;

/// A keybag as it is stored, still locked.
struct ParsedKeybag {
    KeybagFields header;
    std::map<std::uint32_t, KeybagFields> classes; ///< By the number of the protection class.

    bool operator==(const ParsedKeybag&) const = default;
};

/// The class keys that a password opened. Never changed afterwards, so any number of threads may read it.
struct UnlockedKeybag {
    std::map<std::uint32_t, SecretBytes> classKeys; ///< By the number of the protection class.

    bool operator==(const UnlockedKeybag&) const = default;
};

/// Reads a sequence of records: a tag of four bytes, a big-endian length of four, the value
/// (docs/formats/device-backup.md). Memory stays in proportion to the bytes. Throws BackupError, and
/// CancellationError soon after a request to stop.
ParsedKeybag parseKeybag(std::span<const std::uint8_t> bytes, const std::stop_token& stop = {});

/// Derives the password's key and unwraps the class keys with it. Takes as long as the keybag's rounds ask
/// for; throws CancellationError within 100 ms of a request to stop. Throws BackupError.
UnlockedKeybag unlock(std::string_view password, const ParsedKeybag& keybag,
                      const std::stop_token& stop = {});

/// The key inside a blob of a little-endian class number and a wrapped key. `keybag` may be null. Throws
/// BackupError, and CancellationError soon after a request to stop.
SecretBytes unwrapProtectedKey(std::span<const std::uint8_t> blob, const UnlockedKeybag* keybag,
                               const std::stop_token& stop = {});

} // namespace quillbook
