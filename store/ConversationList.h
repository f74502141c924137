#pragma once

#include "core/interfaces/ContactResolving.h"
#include "core/records/ConversationSummary.h"
#include "store/sqlite/SQLiteDatabase.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace quillbook {

/// The rows of the conversation list as the database has them, before names are known.
struct ConversationListRows {
    std::vector<SQLiteRow> chats;
    std::map<std::int64_t, std::vector<std::string>> addressesByChat; ///< In handle row order.

    /// Throws SQLiteError.
    static ConversationListRows read(SQLiteDatabase& database);
    /// Every address once.
    std::vector<std::string> addresses() const;
    /// Newest conversation first; those without messages last. Throws RepositoryError.
    std::vector<ConversationSummary> summaries(const ContactIdentities& identities) const;
};

/// The ids of the chats whose names, addresses or message texts hold `query`, blind to the case of ASCII
/// letters. Throws SQLiteError.
std::unordered_set<std::string> chatsContaining(SQLiteDatabase& database, std::string_view query);

} // namespace quillbook
