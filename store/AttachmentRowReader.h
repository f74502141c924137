#pragma once

#include "core/records/ArchiveConversation.h"
#include "store/sqlite/SQLiteDatabase.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace quillbook {

using AttachmentsByMessage = std::unordered_map<std::int64_t, std::vector<ArchiveAttachment>>;

/// The attachment records of all messages of a chat, by message row id, in row order. Throws SQLiteError.
AttachmentsByMessage readAttachments(SQLiteDatabase& database, std::int64_t chatID);

} // namespace quillbook
