#pragma once

#include "core/records/ArchiveConversation.h"
#include "store/sqlite/SQLiteDatabase.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quillbook {

/// A conversation's title where neither the chat nor a contact has a name: the chat's identifier, else the
/// addresses, else the localized "Untitled Conversation". `chat` is a row of the chat table.
std::string titleWithoutNames(const SQLiteRow& chat, const std::vector<std::string>& addresses);

/// Who takes part in one chat, and which handle row stands for whom.
class ParticipantDirectory {
public:
    /// Reads the chat's own handles, in the order of their rows. Throws SQLiteError.
    ParticipantDirectory(SQLiteDatabase& database, std::int64_t chatID);

    /// Adds those who wrote and are in the chat no more. Throws SQLiteError.
    void addSendersOutside(SQLiteDatabase& database, const std::vector<SQLiteRow>& messageRows);

    /// The sender of a message row: "me", a participant's id, or nothing.
    std::optional<std::string> sender(const SQLiteRow& messageRow) const;

    const std::vector<ArchiveParticipant>& participants() const { return participants_; }
    std::vector<ArchiveParticipant> takeParticipants() { return std::move(participants_); }
    std::vector<std::string> addresses() const;

private:
    std::vector<ArchiveParticipant> participants_;
    std::unordered_map<std::int64_t, std::string> participantByHandle_;
};

} // namespace quillbook
