#pragma once

#include "core/interfaces/CacheRecovery.h"
#include "core/text/Date.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quillbook {

/// One recovered file, as the record for the user names it.
struct RecoveryManifestEntry {
    RecoveryCandidate candidate;
    std::string sha256; ///< Of the file at the destination, in lower-case hexadecimal.
};

/// Writes the record anew, over that of an earlier recovery; the format is in docs/formats/recovery.md.
/// Throws FileError.
void writeRecoveryManifest(const std::filesystem::path& file,
                           const std::vector<RecoveryManifestEntry>& entries, Date recoveredAt);

} // namespace quillbook
