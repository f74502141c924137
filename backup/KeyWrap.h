#pragma once

#include "backup/SecretBytes.h"

#include <cstdint>
#include <optional>
#include <span>
#include <stop_token>

namespace quillbook {

/// Unwraps a key as RFC 3394 has it, with the default integrity value. `key` is of 16, 24 or 32 bytes.
/// Nothing where the integrity value or a length is wrong: that is how a wrong key shows. Throws
/// CancellationError soon after a request to stop, however much is wrapped.
std::optional<SecretBytes> aesKeyUnwrap(std::span<const std::uint8_t> key,
                                        std::span<const std::uint8_t> wrapped,
                                        const std::stop_token& stop = {});

} // namespace quillbook
