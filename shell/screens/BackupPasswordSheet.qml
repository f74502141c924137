import QtQuick
import QtQuick.Layouts
import Quillbook

/// Asks for the password of an encrypted backup. It is kept in the field alone, which is emptied by its use and
/// by the sheet's end.
Sheet {
    id: root
    required property AppModelAdapter model
    property bool submitting: false

    function submit() {
        if (submitting || !model.canSubmitPassword || field.length === 0) return
        submitting = true
        model.submitBackupPassword(field)
        if (model.canSubmitPassword) submitting = false // The model had no use for it.
    }

    label: title.text
    visible: model.isAskingForPassword
    contentWidth: Theme.promptWidth
    contentHeight: column.implicitHeight
    onOpened: field.forceActiveFocus()
    // As it begins to go, not once it is gone: by then it may be wanted again.
    onAboutToHide: {
        model.forgetPassword(field)
        submitting = false
        model.cancelBackupPassword()
    }

    contentItem: FocusScope {
        ColumnLayout {
            id: column
            width: parent.width
            spacing: Theme.large
            Glyph {
                Layout.alignment: Qt.AlignHCenter
                symbol: "lock.iphone"
                size: Theme.huge
                tint: Theme.accent
            }
            Heading {
                id: title
                Layout.fillWidth: true
                horizontalAlignment: Text.AlignHCenter
                text: qsTr("Unlock Backup")
            }
            Words {
                Layout.fillWidth: true
                horizontalAlignment: Text.AlignHCenter
                isSecondary: true
                text: qsTr("The backup of %1 is encrypted. Enter its backup password to read messages. The password is used only on this Mac and is not saved.").arg(root.model.passwordDevice)
            }
            PasswordField {
                id: field
                Layout.fillWidth: true
                focus: true
                enabled: !root.submitting
                prompt: qsTr("Backup password")
                hint: qsTr("The password used when this device backup was encrypted")
                onAccepted: root.submit()
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.small
                Item { Layout.fillWidth: true }
                ActionButton {
                    text: qsTr("Cancel")
                    onClicked: root.model.cancelBackupPassword()
                }
                ActionButton {
                    isProminent: true
                    enabled: field.length > 0 && root.model.canSubmitPassword && !root.submitting
                    text: root.submitting ? qsTr("Unlocking…") : qsTr("Unlock")
                    onClicked: root.submit()
                }
            }
        }
    }
}
