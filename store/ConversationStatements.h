#pragma once

#include <set>
#include <string>

namespace quillbook {

// Rows of type 2000 and above are reactions, which are no messages of their own.
inline constexpr const char* listStatement =
    "SELECT c.ROWID AS chat_id, c.guid AS chat_guid,\n"
    "       c.display_name, c.chat_identifier,\n"
    "       MAX(CASE WHEN m.associated_message_type IS NULL OR m.associated_message_type < 2000 THEN m.date "
    "END) AS last_date,\n"
    "       MIN(CASE WHEN m.associated_message_type IS NULL OR m.associated_message_type < 2000 THEN m.date "
    "END) AS first_date,\n"
    "       COUNT(DISTINCT CASE WHEN m.associated_message_type IS NULL OR m.associated_message_type < 2000 "
    "THEN m.ROWID END) AS message_count,\n"
    "       COUNT(DISTINCT maj.attachment_id) AS attachment_count,\n"
    "       (SELECT text FROM message recent\n"
    "         JOIN chat_message_join recent_join ON recent_join.message_id = recent.ROWID\n"
    "        WHERE recent_join.chat_id = c.ROWID AND recent.associated_message_type = 0\n"
    "        ORDER BY recent.date DESC, recent.ROWID DESC LIMIT 1) AS last_text\n"
    "  FROM chat c\n"
    "  LEFT JOIN chat_message_join cmj ON cmj.chat_id = c.ROWID\n"
    "  LEFT JOIN message m ON m.ROWID = cmj.message_id\n"
    "  LEFT JOIN message_attachment_join maj ON maj.message_id = m.ROWID\n"
    " GROUP BY c.ROWID\n"
    "ORDER BY last_date DESC, c.ROWID DESC";

inline constexpr const char* participantStatement =
    "SELECT chj.chat_id, h.id AS address\n"
    "  FROM chat_handle_join chj JOIN handle h ON h.ROWID = chj.handle_id\n"
    " ORDER BY chj.chat_id, h.ROWID";

inline constexpr const char* searchStatement =
    "SELECT c.ROWID AS chat_id\n"
    "  FROM chat c\n"
    " WHERE lower(COALESCE(c.display_name, '')) LIKE lower(?1) ESCAPE '\\'\n"
    "    OR lower(COALESCE(c.chat_identifier, '')) LIKE lower(?1) ESCAPE '\\'\n"
    "    OR EXISTS (\n"
    "        SELECT 1 FROM chat_handle_join chj JOIN handle h ON h.ROWID = chj.handle_id\n"
    "         WHERE chj.chat_id = c.ROWID AND lower(h.id) LIKE lower(?1) ESCAPE '\\'\n"
    "    )\n"
    "    OR EXISTS (\n"
    "        SELECT 1 FROM chat_message_join smj JOIN message sm ON sm.ROWID = smj.message_id\n"
    "         WHERE smj.chat_id = c.ROWID AND lower(COALESCE(sm.text, '')) LIKE lower(?1) ESCAPE '\\'\n"
    "    )";

/// Every message row of a chat, for a message table with these columns. The optional ones are NULL where the
/// table lacks them, so that one statement and one reader serve databases of every age.
std::string messageStatement(const std::set<std::string>& messageColumns);

} // namespace quillbook
