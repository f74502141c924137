import QtQuick
import QtQuick.Layouts
import Quillbook

/// What stands where no conversation is; it offers the device backups where they are all there is.
PageScroll {
    id: root
    required property AppModelAdapter model
    readonly property bool offersBackups: model.isLocalSource && model.searchText === ""

    spacing: Theme.small
    Heading {
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        font.pixelSize: Theme.heading
        text: qsTr("No Conversations")
    }
    Words {
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        isSecondary: true
        text: qsTr("Try a different search, or check that Messages has finished syncing.")
    }
    Repeater {
        model: root.offersBackups ? root.model.backupSources : []
        ActionButton {
            required property var modelData
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: Theme.small
            symbol: modelData.symbol
            text: modelData.title
            hint: modelData.subtitle
            onClicked: root.model.selectSource(modelData.id)
        }
    }
}
