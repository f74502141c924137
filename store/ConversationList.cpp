#include "store/ConversationList.h"

#include "core/text/Localization.h"
#include "store/ConversationStatements.h"
#include "store/MessageDate.h"
#include "store/ParticipantDirectory.h"
#include "store/RepositoryError.h"

#include <set>

namespace quillbook {
namespace {

/// Takes the rows whose chat is not named; no chat has this number.
constexpr std::int64_t noChat = -1;

std::string likePattern(std::string_view query) {
    std::string pattern = "%";
    for (const char character : query) {
        if (character == '\\' || character == '%' || character == '_') pattern += '\\';
        pattern += character;
    }
    return pattern + '%';
}

std::optional<std::string> owned(std::optional<std::string_view> text) {
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

std::string title(const SQLiteRow& row, const ContactIdentity* identity,
                  const std::vector<std::string>& addresses) {
    if (const auto name = row.text("display_name"); name && !name->empty()) return std::string(*name);
    if (identity != nullptr && identity->displayName) return *identity->displayName;
    return titleWithoutNames(row, addresses);
}

ConversationSummary summary(const SQLiteRow& row, std::int64_t chatID,
                            const std::vector<std::string>& addresses, const ContactIdentities& identities) {
    // A group takes neither its title nor its picture from one of its members.
    const auto found = addresses.size() == 1 ? identities.find(addresses.front()) : identities.end();
    const ContactIdentity* identity = found == identities.end() ? nullptr : &found->second;
    const std::string id = std::to_string(chatID);
    return ConversationSummary{
        .id = SourceID{id},
        .guid = owned(row.text("chat_guid")).value_or("chat-" + id),
        .title = title(row, identity, addresses),
        .participantAddresses = addresses,
        .lastMessage = owned(row.text("last_text")),
        .lastMessageDate = messageDate(row, "last_date"),
        .firstMessageDate = messageDate(row, "first_date"),
        .messageCount = row.storedInteger("message_count").value_or(0),
        .attachmentCount = row.storedInteger("attachment_count").value_or(0),
        .avatarData = identity == nullptr ? std::nullopt : identity->avatarData,
        .avatarMimeType = identity == nullptr ? std::nullopt : identity->avatarMimeType,
    };
}

} // namespace

ConversationListRows ConversationListRows::read(SQLiteDatabase& database) {
    ConversationListRows rows;
    rows.chats = database.query(listStatement);
    for (const SQLiteRow& row : database.query(participantStatement)) {
        auto& addresses = rows.addressesByChat[row.storedInteger("chat_id").value_or(noChat)];
        if (const auto address = row.text("address")) addresses.emplace_back(*address);
    }
    return rows;
}

std::vector<std::string> ConversationListRows::addresses() const {
    std::set<std::string> unique;
    for (const auto& [chat, addresses] : addressesByChat)
        unique.insert(addresses.begin(), addresses.end());
    return {unique.begin(), unique.end()};
}

std::vector<ConversationSummary> ConversationListRows::summaries(const ContactIdentities& identities) const {
    static const std::vector<std::string> nobody;
    std::vector<ConversationSummary> list;
    list.reserve(chats.size());
    for (const SQLiteRow& row : chats) {
        const auto chatID = row.storedInteger("chat_id");
        if (!chatID) throw RepositoryError(RepositoryError::Reason::missingRequiredColumn, "chat_id");
        const auto found = addressesByChat.find(*chatID);
        list.push_back(
            summary(row, *chatID, found == addressesByChat.end() ? nobody : found->second, identities));
    }
    return list;
}

std::unordered_set<std::string> chatsContaining(SQLiteDatabase& database, std::string_view query) {
    const SQLiteValue pattern = likePattern(query);
    std::unordered_set<std::string> ids;
    for (const SQLiteRow& row : database.query(searchStatement, {&pattern, 1})) {
        if (const auto id = row.storedInteger("chat_id")) ids.insert(std::to_string(*id));
    }
    return ids;
}

} // namespace quillbook
