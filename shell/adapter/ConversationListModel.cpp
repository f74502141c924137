#include "shell/adapter/ConversationListModel.h"

#include "core/text/DateText.h"
#include "core/text/Localization.h"
#include "shell/adapter/ConversationFacts.h"
#include "shell/adapter/Initials.h"
#include "shell/adapter/Words.h"

#include <utility>

namespace quillbook {
namespace {

std::string countsLine(const ConversationSummary& row) {
    return localizedFormat("{} messages", countWords(row.messageCount)) + " · " +
           localizedFormat("{} attachments", countWords(row.attachmentCount));
}

} // namespace

ConversationListModel::ConversationListModel(const std::vector<ConversationSummary>& conversations,
                                             std::shared_ptr<AvatarStore> avatars, QObject* parent)
    : QAbstractListModel(parent), conversations_(conversations), avatars_(std::move(avatars)) {}

int ConversationListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant ConversationListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const ConversationSummary& row = conversations_[static_cast<std::size_t>(index.row())];
    switch (static_cast<Role>(role)) {
    case conversationID:
        return qtText(row.id.rawValue);
    case title:
        return qtText(row.title);
    case lastMessage:
        return qtText(row.lastMessage.value_or(""));
    case counts:
        return qtText(countsLine(row));
    case date:
        return row.lastMessageDate ? qtText(DateText::user().monthAndDay(*row.lastMessageDate)) : QString();
    case dates:
        return qtText(dateSpan(row));
    case avatar:
        return row.avatarData ? QStringLiteral("image://avatar/") + qtText(avatars_->keep(*row.avatarData))
                              : QString();
    case monogram:
        return qtText(initials(row.title));
    case isGroup:
        return isGroupConversation(row);
    }
    return {};
}

QHash<int, QByteArray> ConversationListModel::roleNames() const {
    return {{conversationID, "conversationID"},
            {title, "title"},
            {lastMessage, "lastMessage"},
            {counts, "counts"},
            {date, "date"},
            {dates, "dates"},
            {avatar, "avatar"},
            {monogram, "monogram"},
            {isGroup, "isGroup"}};
}

int ConversationListModel::rowOf(const QString& id) const {
    const SourceID wanted{id.toStdString()};
    for (std::size_t row = 0; row < conversations_.size(); ++row)
        if (conversations_[row].id == wanted) return static_cast<int>(row);
    return -1;
}

QString ConversationListModel::idAt(int row) const {
    if (row < 0 || row >= count()) return {};
    return qtText(conversations_[static_cast<std::size_t>(row)].id.rawValue);
}

void ConversationListModel::reset() {
    beginResetModel();
    endResetModel();
    Q_EMIT countChanged();
}

} // namespace quillbook
