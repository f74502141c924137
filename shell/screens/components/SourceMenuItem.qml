import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quillbook

T.MenuItem {
    id: root
    required property var source

    readonly property color firstInk: highlighted ? Theme.accentInk : Theme.ink
    readonly property color secondInk: highlighted ? Theme.accentInk : Theme.secondary

    function press() { if (enabled) clicked() }

    text: source.title
    implicitWidth: Math.min(row.implicitWidth, Theme.sidebarMost) + leftPadding + rightPadding
    implicitHeight: row.implicitHeight + topPadding + bottomPadding
    leftPadding: Theme.medium
    rightPadding: Theme.medium
    topPadding: Theme.small
    bottomPadding: Theme.small
    checkable: true
    checked: source.isSelected
    onToggled: checked = Qt.binding(() => root.source.isSelected)
    Accessible.name: source.title
    Accessible.description: source.subtitle
    Accessible.onPressAction: press()
    Accessible.onToggleAction: press()
    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()

    contentItem: RowLayout {
        id: row
        spacing: Theme.medium
        Glyph { symbol: root.source.symbol; tint: root.firstInk }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0
            Words {
                Layout.fillWidth: true
                text: root.source.title
                color: root.firstInk
                mayShorten: true
                wrapMode: Text.NoWrap
                maximumLineCount: 1
                elide: Text.ElideRight
                Accessible.ignored: true
            }
            Words {
                Layout.fillWidth: true
                visible: text !== ""
                text: root.source.subtitle
                mayShorten: true
                font.pixelSize: Theme.caption
                color: root.secondInk
                wrapMode: Text.NoWrap
                maximumLineCount: 1
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
        Glyph {
            symbol: "checkmark"
            tint: root.highlighted ? Theme.accentInk : Theme.accent
            opacity: root.source.isSelected ? 1 : 0
        }
    }
    background: Rectangle {
        radius: Theme.itemRadius
        color: root.highlighted ? Theme.accent : Theme.clear
    }
}
