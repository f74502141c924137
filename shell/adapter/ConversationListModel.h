#pragma once

#include "core/records/ConversationSummary.h"
#include "shell/adapter/AvatarStore.h"

#include <QAbstractListModel>
#include <memory>
#include <vector>

namespace quillbook {

/// The rows of the conversation list. Words are made for the rows that are looked at, none for the others.
class ConversationListModel final : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    enum class Role {
        conversationID = Qt::UserRole,
        title,
        lastMessage,
        counts,   ///< "1,204 messages · 31 attachments"
        date,     ///< Of the newest message, as in "Nov 15"; empty without one.
        dates,    ///< Of the oldest and newest message in full.
        avatar,   ///< The picture's URL, or empty.
        monogram, ///< The name's initials; empty where it gives none.
        isGroup,
    };

    ConversationListModel(const std::vector<ConversationSummary>& conversations,
                          std::shared_ptr<AvatarStore> avatars, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;
    int count() const { return static_cast<int>(conversations_.size()); }
    /// The row of a conversation, or -1.
    Q_INVOKABLE int rowOf(const QString& id) const;
    /// The id of the conversation in a row; empty where there is no such row.
    Q_INVOKABLE QString idAt(int row) const;

    /// To be called round a change of the conversations: `reset` afterwards is enough, since nothing reads
    /// between the two.
    void reset();

Q_SIGNALS:
    void countChanged();

private:
    const std::vector<ConversationSummary>& conversations_;
    std::shared_ptr<AvatarStore> avatars_;
};

} // namespace quillbook
