#pragma once

#include "core/records/ArchiveConversation.h"
#include "store/AttributedBodyDecoder.h"
#include "store/sqlite/SQLiteDatabase.h"

#include <set>
#include <stop_token>
#include <string>

namespace quillbook {

/// A conversation as the database has it, before contacts are asked.
struct StoredConversation {
    ArchiveConversation conversation;
    std::string chatName; ///< The name that the chat itself bears; empty where it has none.
};

/// The columns of the message table that this database really has; older ones lack some. Throws SQLiteError.
std::set<std::string> readMessageColumns(SQLiteDatabase& database);

/// Reads one chat whole, within the caller's transaction. Throws SQLiteError, RepositoryError or
/// CancellationError.
StoredConversation loadStoredConversation(SQLiteDatabase& database, const AttributedBodyDecoder& bodyDecoder,
                                          const std::set<std::string>& messageColumns, const SourceID& id,
                                          std::int64_t chatID, const std::stop_token& stop);

} // namespace quillbook
