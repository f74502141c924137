#pragma once

#include "backup/SecretBytes.h"

#include <cstdint>
#include <span>
#include <stop_token>

namespace quillbook {

enum class KeyDerivationHash { sha1, sha256 };

inline constexpr std::size_t derivedKeySize = 32;

/// PBKDF2 of RFC 8018 with HMAC, giving a key of `derivedKeySize` bytes. A run that fails, as one of no
/// rounds does, gives zeros: a key that opens nothing. Throws CancellationError within 100 ms of a request to
/// stop, however many rounds are asked for.
SecretBytes deriveKey(KeyDerivationHash hash, std::span<const std::uint8_t> password,
                      std::span<const std::uint8_t> salt, std::uint64_t rounds,
                      const std::stop_token& stop = {});

} // namespace quillbook
