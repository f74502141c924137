import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quillbook

T.MenuItem {
    id: root
    readonly property bool isLit: highlighted && enabled

    function press() {
        if (!enabled) return
        if (action) action.trigger()
        clicked()
    }

    implicitWidth: row.implicitWidth + leftPadding + rightPadding
    implicitHeight: row.implicitHeight + topPadding + bottomPadding
    leftPadding: Theme.medium
    rightPadding: Theme.medium
    topPadding: Theme.inset
    bottomPadding: topPadding
    opacity: enabled ? 1 : Theme.disabled
    Accessible.role: Accessible.MenuItem
    Accessible.name: text
    Accessible.onPressAction: press()
    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()

    contentItem: RowLayout {
        id: row
        spacing: Theme.wide
        Words {
            Layout.fillWidth: true
            text: root.text
            color: root.isLit ? Theme.accentInk : Theme.ink
            wrapMode: Text.NoWrap
            Accessible.ignored: true
        }
        Words {
            visible: text !== ""
            text: root.action && root.action.shortcut ? root.action.shortcut : ""
            color: root.isLit ? Theme.accentInk : Theme.secondary
            wrapMode: Text.NoWrap
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: Theme.itemRadius
        color: root.isLit ? Theme.accent : Theme.clear
    }
}
