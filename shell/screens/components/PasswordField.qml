import QtQuick
import QtQuick.Templates as T
import Quillbook

T.TextField {
    id: root
    property string prompt: ""
    property string hint: ""

    // Qt gives fields for passwords no name, and another description as the first screen reader comes.
    onVisibleChanged: Accessible.description = prompt + "\n" + hint

    implicitHeight: Math.max(Theme.field, words.implicitHeight + 2 * Theme.tiny)
    leftPadding: Theme.medium
    rightPadding: Theme.medium
    verticalAlignment: TextInput.AlignVCenter
    echoMode: TextInput.Password
    inputMethodHints: Qt.ImhHiddenText | Qt.ImhSensitiveData | Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase
    color: Theme.ink
    selectionColor: Theme.accent
    selectedTextColor: Theme.accentInk
    font.family: Theme.family
    font.pixelSize: Theme.body

    Words {
        id: words
        anchors { left: parent.left; leftMargin: root.leftPadding; right: parent.right
                  rightMargin: root.rightPadding; verticalCenter: parent.verticalCenter }
        text: root.prompt
        visible: root.length === 0 && root.preeditText === "" // Read by the script, the text would leave copies.
        isSecondary: true
        Accessible.ignored: true
    }
    background: Rectangle {
        radius: Theme.radius
        color: Theme.surface
        border.width: root.activeFocus ? Theme.focusWidth : Theme.hair
        border.color: root.activeFocus ? Theme.accent : Theme.edge
    }
}
