import QtQuick
import Quillbook

/// The buttons under a screen: one at the front, one at the end, a note between them.
Rectangle {
    id: root
    property Item leading: null
    property Item main: null
    property string note: ""

    implicitHeight: Math.max(Theme.control, leading ? leading.implicitHeight : 0) + 2 * Theme.large
    color: Theme.window
    Accessible.ignored: true

    Rectangle {
        anchors { left: parent.left; right: parent.right; top: parent.top }
        height: Theme.hair
        color: Theme.line
    }
    Item {
        id: front
        anchors { left: parent.left; leftMargin: Theme.wide; verticalCenter: parent.verticalCenter }
        width: root.leading ? root.leading.width : 0
        height: root.leading ? root.leading.height : 0
        children: root.leading ? [root.leading] : []
    }
    Words {
        anchors { left: front.right; right: end.left; leftMargin: Theme.small; rightMargin: Theme.small
                  verticalCenter: parent.verticalCenter }
        horizontalAlignment: Text.AlignHCenter
        text: root.note
        visible: text !== ""
        isSecondary: true
        font.pixelSize: Theme.caption
    }
    Item {
        id: end
        anchors { right: parent.right; rightMargin: Theme.wide; verticalCenter: parent.verticalCenter }
        width: root.main ? root.main.width : 0
        height: root.main ? root.main.height : 0
        children: root.main ? [root.main] : []
    }
}
