import QtQuick
import QtQuick.Templates as T
import Quillbook

/// A button that shows a symbol alone; its words are for the tool tip and for screen readers.
T.Button {
    id: root
    property string symbol: ""
    property string hint: ""
    property real side: Theme.control

    function press() { if (enabled) clicked() }

    implicitWidth: side
    implicitHeight: side
    hoverEnabled: true
    Accessible.name: text
    Accessible.description: hint
    Accessible.onPressAction: press()
    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()
    T.ToolTip.visible: hovered && text !== ""
    T.ToolTip.delay: Theme.tipDelay
    T.ToolTip.text: text

    contentItem: Item {
        Glyph {
            anchors.centerIn: parent
            symbol: root.symbol
            tint: Theme.secondary
        }
    }
    background: Rectangle {
        radius: Theme.radius
        color: root.down ? Theme.well : root.hovered ? Theme.surface : Theme.clear
        FocusRing { isShown: root.visualFocus || (root.activeFocus && Theme.isKeyboardInUse); offset: 0 }
    }
}
