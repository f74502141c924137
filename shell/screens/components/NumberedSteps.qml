import QtQuick
import QtQuick.Layouts
import Quillbook

ColumnLayout {
    id: root
    required property var steps

    spacing: Theme.medium
    Repeater {
        model: root.steps
        RowLayout {
            id: step
            required property int index
            required property string modelData
            Layout.fillWidth: true
            spacing: Theme.medium
            Rectangle {
                Layout.alignment: Qt.AlignTop
                implicitWidth: Theme.wide * Theme.textScale
                implicitHeight: implicitWidth
                radius: width / 2
                color: Theme.accentSoft
                Text {
                    anchors.centerIn: parent
                    text: step.index + 1
                    textFormat: Text.PlainText
                    color: Theme.accent
                    font.family: Theme.family
                    font.pixelSize: Theme.caption
                    font.weight: Font.DemiBold
                }
            }
            Words {
                Layout.fillWidth: true
                Layout.topMargin: Theme.tiny / 2
                text: step.modelData
                Accessible.name: (step.index + 1) + ". " + step.modelData
            }
        }
    }
}
