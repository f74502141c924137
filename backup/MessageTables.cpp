#include "backup/MessageTables.h"

#include "backup/BackupError.h"
#include "store/sqlite/TableForm.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace quillbook {
namespace {

constexpr std::string_view tables =
    "message chat handle attachment chat_message_join chat_handle_join message_attachment_join";

/// Those that are read of any of the tables.
constexpr std::string_view columns =
    "rowid guid text attributedbody handle_id date is_from_me service subject associated_message_guid "
    "associated_message_type thread_originator_guid date_edited date_retracted display_name chat_identifier "
    "service_name id filename transfer_name total_bytes mime_type uti chat_id message_id attachment_id";

std::vector<std::string> wordsOf(std::string_view text) {
    std::vector<std::string> words;
    while (!text.empty()) {
        const auto end = std::min(text.find(' '), text.size());
        words.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

} // namespace

void requireOrdinaryMessageTables(const std::filesystem::path& database, const std::stop_token& stop) {
    try {
        SQLiteDatabase connection(database, SQLiteRestraint{.stop = stop});
        if (areOrdinaryTables(connection, wordsOf(tables), wordsOf(columns))) return;
    } catch (const SQLiteError&) {
        return;
    }
    throw BackupError(BackupError::Reason::unsupportedBackup, "its Messages database has another form");
}

} // namespace quillbook
