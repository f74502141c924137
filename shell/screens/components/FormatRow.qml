import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quillbook

/// One format of the album, on or off.
T.Switch {
    id: root
    required property string kind
    required property string title
    required property string detail
    required property bool isOn
    property bool locked: false

    signal switched(bool isOn)

    function flip() { if (!locked) switched(!isOn) }

    Layout.fillWidth: true
    implicitHeight: row.implicitHeight + 2 * Theme.tiny
    implicitWidth: row.implicitWidth
    enabled: !locked
    checked: isOn
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.CheckBox
    Accessible.name: title
    Accessible.description: detail + "\n" + (locked ? qsTr("Always included") : qsTr("Include this format in the album"))
    Accessible.onPressAction: flip()
    Accessible.onToggleAction: flip()
    Keys.onReturnPressed: flip()
    Keys.onEnterPressed: flip()
    onToggled: {
        const wanted = checked
        checked = Qt.binding(() => root.isOn)
        switched(wanted)
    }

    contentItem: RowLayout {
        id: row
        spacing: Theme.medium
        Glyph {
            symbol: root.kind
            size: Theme.glyphLarge
            tint: Theme.accent
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0
            Words {
                Layout.fillWidth: true
                text: root.title
                font.weight: Font.Medium
                Accessible.ignored: true
            }
            Words {
                Layout.fillWidth: true
                text: root.detail
                isSecondary: true
                font.pixelSize: Theme.caption
                Accessible.ignored: true
            }
        }
        SwitchKnob {
            isOn: root.checked
            opacity: root.locked ? Theme.disabled : 1
        }
    }
    background: Item {
        FocusRing { isShown: root.visualFocus || (root.activeFocus && Theme.isKeyboardInUse); offset: Theme.tiny }
    }
}
