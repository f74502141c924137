#pragma once

#include "shell/desktop/FolderChoosing.h"

#include <QObject>
#include <QUrl>

namespace quillbook {

/// A folder dialog that the window shows itself, where the desktop has none to offer.
class FolderDialogAdapter final : public QObject, public FolderChoosing {
    Q_OBJECT
    Q_PROPERTY(bool isAsking READ isAsking NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString prompt READ prompt NOTIFY changed)
    Q_PROPERTY(QUrl folder READ folder NOTIFY changed)
public:
    using QObject::QObject;

    bool isAsking() const { return answer_ != nullptr; }
    QString title() const;
    QString prompt() const;
    QUrl folder() const;

    void chooseFolder(const FolderQuestion& question, Answer answer) override;
    Q_INVOKABLE void accept(const QUrl& folder);
    Q_INVOKABLE void reject();

Q_SIGNALS:
    void changed();

private:
    void finish(const std::optional<std::filesystem::path>& folder);

    FolderQuestion question_;
    Answer answer_; ///< Present while the dialog is open.
};

} // namespace quillbook
