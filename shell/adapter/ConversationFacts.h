#pragma once

#include "core/records/ConversationSummary.h"
#include "shell/adapter/AvatarStore.h"

#include <QObject>
#include <QString>

namespace quillbook {

/// The selected conversation in words.
struct ConversationFacts {
    Q_GADGET
    Q_PROPERTY(bool isPresent MEMBER isPresent)
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString peopleLine MEMBER peopleLine)
    Q_PROPERTY(QString messageCount MEMBER messageCount)
    Q_PROPERTY(QString attachmentCount MEMBER attachmentCount)
    Q_PROPERTY(QString dates MEMBER dates)
    Q_PROPERTY(QString avatar MEMBER avatar)
    Q_PROPERTY(QString monogram MEMBER monogram)
    Q_PROPERTY(bool isGroup MEMBER isGroup)
    Q_PROPERTY(QString previewLabel MEMBER previewLabel)
public:
    bool isPresent = false; ///< All below is empty without a selected conversation.
    QString id;
    QString title;
    QString peopleLine; ///< Of a group only.
    QString messageCount;
    QString attachmentCount;
    QString dates;
    QString avatar;   ///< The picture's URL, or empty.
    QString monogram; ///< The name's initials; empty where it gives none.
    bool isGroup = false;
    QString previewLabel; ///< What a screen reader calls the album's picture.
};

/// More than one person beside the user.
bool isGroupConversation(const ConversationSummary& conversation);
/// The days of the oldest and the newest message in full; empty without either.
std::string dateSpan(const ConversationSummary& conversation);
/// `conversation` may be null.
ConversationFacts conversationFacts(const ConversationSummary* conversation, AvatarStore& avatars);

} // namespace quillbook
