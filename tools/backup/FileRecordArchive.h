#pragma once

#include "core/records/ConversationSummary.h"

#include <cstdint>
#include <optional>
#include <string>

namespace quillbook::sample {

/// What the index of a backup notes of a file or folder.
struct StoredFileRecord {
    std::string relativePath;
    std::int64_t size = 0;
    std::uint32_t mode = 0100644;
    std::uint32_t protectionClass = 4;
    std::int64_t lastModified = 0; ///< Seconds since 1970.
    std::uint64_t inode = 0;
    std::optional<Data> encryptionKey; ///< Wrapped, behind the number of its class.
};

/// The keyed archive of a record, as a binary property list.
Data fileRecordArchive(const StoredFileRecord& record);

} // namespace quillbook::sample
