import QtQuick
import QtQuick.Templates as T
import Quillbook

T.MenuBarItem {
    id: root
    implicitWidth: label.implicitWidth + leftPadding + rightPadding
    implicitHeight: Theme.control
    leftPadding: Theme.medium
    rightPadding: Theme.medium
    Accessible.role: Accessible.MenuItem
    Accessible.name: text
    Accessible.onPressAction: triggered()

    contentItem: Words {
        id: label
        text: root.text
        color: root.highlighted ? Theme.accentInk : Theme.ink
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.NoWrap
        Accessible.ignored: true
    }
    background: Item {
        Rectangle {
            anchors { fill: parent; topMargin: Theme.tiny; bottomMargin: Theme.tiny }
            radius: Theme.itemRadius
            color: root.highlighted ? Theme.accent : root.hovered ? Theme.well : Theme.clear
        }
    }
}
