import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quillbook

T.MenuItem {
    id: root
    function press() {
        if (!enabled) return
        if (action) action.trigger()
        clicked()
    }

    implicitWidth: row.implicitWidth + leftPadding + rightPadding
    implicitHeight: row.implicitHeight + topPadding + bottomPadding
    leftPadding: Theme.medium
    rightPadding: Theme.medium
    topPadding: Theme.tiny + 2
    bottomPadding: topPadding
    opacity: enabled ? 1 : 0.45
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
            wrapMode: Text.NoWrap
            Accessible.ignored: true
        }
        Words {
            visible: text !== ""
            text: root.action && root.action.shortcut ? root.action.shortcut : ""
            isSecondary: true
            wrapMode: Text.NoWrap
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: Theme.radius - Theme.tiny / 2
        color: root.highlighted && root.enabled ? Theme.well : Theme.clear
    }
}
