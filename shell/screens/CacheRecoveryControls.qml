import QtQuick
import QtQuick.Layouts
import Quillbook

/// Copies of missing attachments that this Mac still holds.
ColumnLayout {
    id: root
    required property AppModelAdapter model
    readonly property var recovery: model.recovery

    /// The pressed button goes away; the keyboard goes on to what follows it.
    function press(button, operation) {
        if (button.activeFocus) button.nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
        operation()
    }

    spacing: Theme.small
    ActionButton {
        visible: root.recovery.canSurvey
        symbol: "arrow.triangle.2.circlepath"
        text: qsTr("Check this Mac for recoverable copies…")
        onClicked: root.press(this, () => root.model.surveyCaches())
    }
    Repeater {
        model: root.recovery.lines
        RowLayout {
            id: line
            required property int index
            required property string modelData
            Layout.fillWidth: true
            spacing: Theme.medium
            Item {
                Layout.alignment: Qt.AlignTop
                implicitWidth: Theme.glyph
                implicitHeight: Theme.glyph
                Spinner {
                    visible: line.index === 0 && root.recovery.isBusy
                }
                Glyph {
                    symbol: line.index === 0 ? root.recovery.symbol : ""
                    tint: root.recovery.state === "failed" ? Theme.negative : Theme.accent
                }
            }
            Words {
                Layout.fillWidth: true
                text: line.modelData
            }
        }
    }
    ActionButton {
        Layout.leftMargin: Theme.glyph + Theme.medium
        visible: root.recovery.canRecover
        text: qsTr("Recover now")
        onClicked: root.press(this, () => root.model.recoverFromCaches())
    }
    Words {
        Layout.fillWidth: true
        Layout.leftMargin: Theme.glyph + Theme.medium
        visible: text !== ""
        isSecondary: true
        font.pixelSize: Theme.caption
        text: root.recovery.note
    }
}
