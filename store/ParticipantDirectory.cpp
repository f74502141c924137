#include "store/ParticipantDirectory.h"

#include "core/text/Localization.h"

#include <algorithm>
#include <set>

namespace quillbook {
namespace {

ArchiveParticipant participant(std::string_view address) {
    return ArchiveParticipant{.id = "participant-" + std::string(address), .address = std::string(address)};
}

std::string joined(const std::vector<std::string>& texts) {
    std::string line;
    for (const std::string& text : texts) {
        if (!line.empty() || &text != &texts.front()) line += ", ";
        line += text;
    }
    return line;
}

} // namespace

std::string titleWithoutNames(const SQLiteRow& chat, const std::vector<std::string>& addresses) {
    if (const auto identifier = chat.text("chat_identifier"); identifier && !identifier->empty()) {
        return std::string(*identifier);
    }
    std::string title = joined(addresses);
    return title.empty() ? localized("Untitled Conversation") : title;
}

ParticipantDirectory::ParticipantDirectory(SQLiteDatabase& database, std::int64_t chatID) {
    const SQLiteValue chat = chatID;
    const auto rows = database.query("SELECT h.ROWID AS handle_rowid, h.id AS address\n"
                                     "  FROM chat_handle_join chj JOIN handle h ON h.ROWID = chj.handle_id\n"
                                     " WHERE chj.chat_id = ? ORDER BY h.ROWID",
                                     {&chat, 1});
    for (const SQLiteRow& row : rows) {
        participants_.push_back(participant(row.text("address").value_or("Unknown")));
        if (const auto handle = row.storedInteger("handle_rowid")) {
            participantByHandle_[*handle] = participants_.back().id;
        }
    }
}

void ParticipantDirectory::addSendersOutside(SQLiteDatabase& database,
                                             const std::vector<SQLiteRow>& messageRows) {
    std::set<std::int64_t> handles;
    for (const SQLiteRow& row : messageRows) {
        const auto handle = row.storedInteger("handle_id");
        if (handle && !participantByHandle_.contains(*handle)) handles.insert(*handle);
    }
    if (handles.empty()) return;

    std::string marks;
    std::vector<SQLiteValue> bindings;
    for (const std::int64_t handle : handles) {
        marks += marks.empty() ? "?" : ",?";
        bindings.emplace_back(handle);
    }
    std::set<std::string> known;
    for (const ArchiveParticipant& present : participants_)
        known.insert(present.id);
    const std::string sql =
        "SELECT ROWID AS handle_rowid, id AS address FROM handle WHERE ROWID IN (" + marks + ")";
    for (const SQLiteRow& row : database.query(sql, bindings)) {
        const auto handle = row.storedInteger("handle_rowid");
        const auto address = row.text("address");
        if (!handle || !address) continue;
        ArchiveParticipant found = participant(*address);
        participantByHandle_[*handle] = found.id;
        if (known.insert(found.id).second) participants_.push_back(std::move(found));
    }
}

std::optional<std::string> ParticipantDirectory::sender(const SQLiteRow& messageRow) const {
    if (messageRow.storedInteger("is_from_me").value_or(1) != 0) return "me";
    const auto handle = messageRow.storedInteger("handle_id");
    if (!handle) return std::nullopt;
    const auto found = participantByHandle_.find(*handle);
    return found == participantByHandle_.end() ? std::nullopt : std::optional(found->second);
}

std::vector<std::string> ParticipantDirectory::addresses() const {
    std::vector<std::string> addresses;
    for (const ArchiveParticipant& present : participants_)
        addresses.push_back(present.address);
    return addresses;
}

} // namespace quillbook
