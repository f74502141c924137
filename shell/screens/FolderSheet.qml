import QtQuick
import QtQuick.Dialogs
import Quillbook

/// The window's own folder dialog.
FolderDialog {
    id: root
    required property FolderDialogAdapter question

    title: question.title
    acceptLabel: question.prompt
    currentFolder: question.folder
    visible: question.isAsking
    onAccepted: question.accept(selectedFolder)
    onRejected: question.reject()
}
