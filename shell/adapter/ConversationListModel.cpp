#include "shell/adapter/ConversationListModel.h"

#include "core/text/DateText.h"
#include "core/text/Localization.h"
#include "shell/adapter/ConversationFacts.h"
#include "shell/adapter/Initials.h"
#include "shell/adapter/Words.h"

#include <initializer_list>
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
    case Role::conversationID:
        return qtText(row.id.rawValue);
    case Role::title:
        return shownText(row.title);
    case Role::lastMessage:
        return shownText(row.lastMessage.value_or(""));
    case Role::counts:
        return qtText(countsLine(row));
    case Role::date:
        return row.lastMessageDate ? qtText(DateText::user().monthAndDay(*row.lastMessageDate)) : QString();
    case Role::dates:
        return qtText(dateSpan(row));
    case Role::avatar:
        return row.avatarData ? QStringLiteral("image://avatar/") + qtText(avatars_->keepPictureOf(row))
                              : QString();
    case Role::monogram:
        return qtText(initials(row.title));
    case Role::isGroup:
        return isGroupConversation(row);
    }
    return {};
}

QHash<int, QByteArray> ConversationListModel::roleNames() const {
    const std::initializer_list<std::pair<Role, QByteArray>> names = {
        {Role::conversationID, "conversationID"},
        {Role::title, "title"},
        {Role::lastMessage, "lastMessage"},
        {Role::counts, "counts"},
        {Role::date, "date"},
        {Role::dates, "dates"},
        {Role::avatar, "avatar"},
        {Role::monogram, "monogram"},
        {Role::isGroup, "isGroup"},
    };
    QHash<int, QByteArray> all;
    for (const auto& [role, name] : names)
        all[static_cast<int>(role)] = name;
    return all;
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
    avatars_->forgetList();
    endResetModel();
    Q_EMIT countChanged();
}

} // namespace quillbook
