import QtQuick
import QtQuick.Templates as T
import Quillbook

T.TextField {
    id: root
    property string prompt: ""

    implicitHeight: Math.max(Theme.field, words.implicitHeight + 2 * Theme.tiny)
    implicitWidth: Theme.sidebarLeast
    leftPadding: Theme.glyph + Theme.medium + Theme.tiny
    rightPadding: clear.visible ? clear.width + Theme.small : Theme.medium
    verticalAlignment: TextInput.AlignVCenter
    color: Theme.ink
    selectionColor: Theme.accent
    selectedTextColor: Theme.accentInk
    font.family: Theme.family
    font.pixelSize: Theme.body
    selectByMouse: true
    Accessible.name: prompt
    Accessible.searchEdit: true
    Keys.onEscapePressed: event => { event.accepted = text !== ""; clearText() }

    signal cleared
    function clearText() { root.clear(); root.cleared() }

    Words {
        id: words
        anchors { left: parent.left; leftMargin: root.leftPadding; right: parent.right
                  rightMargin: Theme.small; verticalCenter: parent.verticalCenter }
        text: root.prompt
        visible: root.text === "" && root.preeditText === ""
        isSecondary: true
        Accessible.ignored: true
    }
    Glyph {
        anchors { left: parent.left; leftMargin: Theme.medium; verticalCenter: parent.verticalCenter }
        symbol: "magnifyingglass"
        tint: Theme.secondary
    }
    IconButton {
        id: clear
        anchors { right: parent.right; rightMargin: Theme.tiny; verticalCenter: parent.verticalCenter }
        visible: root.text !== ""
        symbol: "xmark"
        text: qsTr("Clear Search")
        side: Theme.field - Theme.small
        focusPolicy: Qt.NoFocus
        onClicked: root.clearText()
    }
    background: Rectangle {
        radius: Theme.radius
        color: Theme.surface
        border.width: root.activeFocus ? Theme.focusWidth : Theme.hair
        border.color: root.activeFocus ? Theme.accent : Theme.edge
    }
}
