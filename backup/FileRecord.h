#pragma once

#include "core/records/ConversationSummary.h"

#include <cstdint>
#include <optional>
#include <span>

namespace quillbook {

/// What a backup's index knows of one stored file.
struct FileRecord {
    std::int64_t size = 0;             ///< Bytes of the plaintext, as the record claims: may be anything.
    std::optional<Data> encryptionKey; ///< Wrapped, behind the number of its protection class.

    bool operator==(const FileRecord&) const = default;
};

/// Reads the keyed archive of an index row. Throws BinaryPlistError and BackupError.
FileRecord fileRecord(std::span<const std::uint8_t> blob);

} // namespace quillbook
