import QtQuick
import QtQuick.Layouts
import Quillbook

/// Name and version.
Sheet {
    id: root
    label: qsTr("About Quillbook")
    contentWidth: Theme.promptWidth
    contentHeight: column.implicitHeight
    onOpened: done.forceActiveFocus()

    contentItem: FocusScope {
        ColumnLayout {
            id: column
            width: parent.width
            spacing: Theme.medium
            Mark { Layout.alignment: Qt.AlignHCenter }
            Heading {
                Layout.fillWidth: true
                horizontalAlignment: Text.AlignHCenter
                text: qsTr("Quillbook")
            }
            Words {
                Layout.fillWidth: true
                horizontalAlignment: Text.AlignHCenter
                isSecondary: true
                text: qsTr("Version %1").arg(Qt.application.version)
            }
            ActionButton {
                id: done
                Layout.alignment: Qt.AlignHCenter
                isProminent: true
                focus: true
                text: qsTr("OK")
                onClicked: root.close()
            }
        }
    }
}
