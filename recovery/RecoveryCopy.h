#pragma once

#include "core/interfaces/CacheRecovery.h"

#include <filesystem>
#include <string>

namespace quillbook {

/// Sees to it that a candidate's file stands below the recovery root, and gives the SHA-256 digest of what
/// stands there. A file that is there already is kept, whatever it holds; a new one appears whole or not at
/// all. Copies that a process left unfinished beside it go once they are an hour old. Throws FileError, and
/// DigestError.
std::string placeRecoveredFile(const RecoveryCandidate& candidate, const std::filesystem::path& recoveryRoot);

} // namespace quillbook
