#include "shell/adapter/FolderDialogAdapter.h"

#include "shell/adapter/Words.h"

#include <QFile>
#include <QMetaObject>
#include <utility>

namespace quillbook {

QString FolderDialogAdapter::title() const {
    return qtText(question_.title);
}

QString FolderDialogAdapter::prompt() const {
    return qtText(question_.prompt);
}

QUrl FolderDialogAdapter::folder() const {
    return fileURL(question_.folder);
}

void FolderDialogAdapter::chooseFolder(const FolderQuestion& question, Answer answer) {
    if (isAsking()) {
        QMetaObject::invokeMethod(
            this, [refused = std::move(answer)] { refused(std::nullopt); }, Qt::QueuedConnection);
        return;
    }
    question_ = question;
    answer_ = std::move(answer);
    Q_EMIT changed();
}

void FolderDialogAdapter::accept(const QUrl& folder) {
    if (!folder.isLocalFile()) return finish(std::nullopt);
    finish(std::filesystem::path(QFile::encodeName(folder.toLocalFile()).toStdString()));
}

void FolderDialogAdapter::reject() {
    finish(std::nullopt);
}

void FolderDialogAdapter::finish(const std::optional<std::filesystem::path>& folder) {
    const Answer answer = std::exchange(answer_, nullptr);
    Q_EMIT changed();
    if (answer) answer(folder);
}

} // namespace quillbook
