#include "shell/adapter/ConversationFacts.h"

#include "core/text/DateText.h"
#include "core/text/Localization.h"
#include "shell/adapter/Initials.h"
#include "shell/adapter/Words.h"

namespace quillbook {

bool isGroupConversation(const ConversationSummary& conversation) {
    return conversation.participantAddresses.size() > 1;
}

std::string dateSpan(const ConversationSummary& conversation) {
    const auto& first = conversation.firstMessageDate;
    const auto& last = conversation.lastMessageDate;
    const std::string from = first ? DateText::user().day(*first) : std::string();
    const std::string to = last ? DateText::user().day(*last) : std::string();
    if (from.empty() || to.empty() || from == to) return from.empty() ? to : from;
    return from + " – " + to;
}

ConversationFacts conversationFacts(const ConversationSummary* conversation, AvatarStore& avatars) {
    ConversationFacts facts;
    if (conversation == nullptr) return facts;
    facts.isPresent = true;
    facts.id = qtText(conversation->id.rawValue);
    facts.title = shownText(conversation->title);
    facts.isGroup = isGroupConversation(*conversation);
    if (facts.isGroup) {
        const auto others = static_cast<std::int64_t>(conversation->participantAddresses.size());
        facts.peopleLine = qtText(localizedFormat("{} people, including you", countWords(others + 1)));
    }
    facts.messageCount = qtText(countWords(conversation->messageCount));
    facts.attachmentCount = qtText(countWords(conversation->attachmentCount));
    facts.dates = qtText(dateSpan(*conversation));
    if (conversation->avatarData)
        facts.avatar = QStringLiteral("image://avatar/") + qtText(avatars.keepPictureOf(*conversation));
    facts.monogram = qtText(initials(conversation->title));
    facts.previewLabel = shownText(localizedFormat("Album preview for {}", conversation->title));
    return facts;
}

} // namespace quillbook
