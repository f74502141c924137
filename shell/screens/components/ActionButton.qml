import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quillbook

/// A push button; the prominent one of a screen is filled with the accent.
T.Button {
    id: root
    property bool isProminent: false
    property bool isQuiet: false ///< A link among text.
    property string symbol: ""
    property string hint: ""
    readonly property color inkColor: isProminent ? Theme.accentInk : isQuiet ? Theme.accent : Theme.ink

    function press() { if (enabled) clicked() }

    Layout.maximumWidth: parent ? parent.width : implicitWidth
    implicitWidth: Math.ceil(measure.implicitWidth + (symbol ? Theme.glyph + row.spacing : 0)) + leftPadding + rightPadding
    implicitHeight: Math.max(Theme.control, label.height + topPadding + bottomPadding)
    leftPadding: isQuiet ? Theme.small : Theme.large
    rightPadding: leftPadding
    topPadding: Theme.inset
    bottomPadding: topPadding
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    opacity: enabled ? 1 : Theme.disabled
    Accessible.name: text
    Accessible.description: hint
    Accessible.onPressAction: press()
    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()

    contentItem: Item {
        implicitHeight: label.height
        // The words in one line; where they wrap, the label's own idea of its width would follow its width.
        Text {
            id: measure
            visible: false
            text: root.text
            textFormat: Text.PlainText
            font: label.font
            Accessible.ignored: true
        }
        Row {
            id: row
            anchors.centerIn: parent
            spacing: Theme.small
            Glyph {
                anchors.verticalCenter: parent.verticalCenter
                symbol: root.symbol
                tint: root.inkColor
            }
            Text {
                id: label
                anchors.verticalCenter: parent.verticalCenter
                width: Math.min(Math.ceil(measure.implicitWidth), root.availableWidth - (root.symbol ? Theme.glyph + row.spacing : 0))
                text: root.text
                textFormat: Text.PlainText
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                color: root.inkColor
                font.family: Theme.family
                font.pixelSize: Theme.body
                font.weight: root.isProminent ? Font.DemiBold : Font.Medium
                font.underline: root.isQuiet && root.hovered
            }
        }
    }
    background: Rectangle {
        radius: Theme.radius
        color: root.isProminent ? (root.down ? Theme.accentPressed : Theme.accent)
             : root.isQuiet ? (root.down ? Theme.well : Theme.clear)
             : root.down ? Theme.well : root.hovered ? Theme.window : Theme.surface
        border.width: root.isQuiet ? 0 : Theme.hair
        border.color: root.isProminent ? color : Theme.line
        FocusRing { isShown: root.visualFocus || (root.activeFocus && Theme.isKeyboardInUse) }
    }
}
