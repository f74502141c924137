import QtQuick
import QtQuick.Layouts
import Quillbook

/// Tells of one error. Dismissing it clears it.
Sheet {
    id: root
    required property AppModelAdapter model

    label: title.text
    visible: model.hasError
    contentWidth: Theme.promptWidth
    contentHeight: column.implicitHeight
    onAboutToHide: model.dismissError()
    onOpened: ok.forceActiveFocus()

    contentItem: FocusScope {
        ColumnLayout {
            id: column
            width: parent.width
            spacing: Theme.medium
            Mark {
                Layout.alignment: Qt.AlignHCenter
                width: Theme.huge
                height: Theme.huge
            }
            Heading {
                id: title
                Layout.fillWidth: true
                horizontalAlignment: Text.AlignHCenter
                font.pixelSize: Theme.heading
                text: qsTr("Quillbook")
            }
            Words {
                readonly property real others: Theme.huge + title.implicitHeight + ok.implicitHeight
                                               + 3 * column.spacing + Theme.small
                Layout.fillWidth: true
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                maximumLineCount: Math.max(2, Math.floor((root.room - others) / lineHeight))
                mayShorten: text.length > 400 // Then it is not ours.
                elide: Text.ElideRight
                text: root.model.errorMessage
                Accessible.role: Accessible.AlertMessage
            }
            ActionButton {
                id: ok
                Layout.alignment: Qt.AlignHCenter
                Layout.topMargin: Theme.small
                isProminent: true
                focus: true
                text: qsTr("OK")
                onClicked: root.model.dismissError()
            }
        }
    }
}
