import QtQuick
import QtQuick.Layouts
import Quillbook

/// Tells of attachments that are not in the album.
Card {
    id: root
    required property string text
    required property string findInBackup ///< The words of the button; empty where it is not offered.
    signal findWanted

    color: Theme.cautionSoft
    NotedLine {
        Layout.fillWidth: true
        symbol: "icloud.and.arrow.down"
        tint: Theme.caution
        text: qsTr("Some attachments aren’t on this Mac")
        words.font.weight: Font.DemiBold
    }
    Words {
        Layout.fillWidth: true
        text: root.text
    }
    Words {
        Layout.fillWidth: true
        isSecondary: true
        text: qsTr("If you deleted these messages on another device, they may no longer be downloadable.")
    }
    ActionButton {
        visible: root.findInBackup !== ""
        Layout.maximumWidth: root.width - 2 * root.padding
        text: root.findInBackup
        hint: qsTr("Switches to the iPhone backup, which includes attachments kept in iCloud")
        onClicked: root.findWanted()
    }
}
