import QtQuick
import QtQuick.Layouts
import Quillbook

Card {
    id: root
    required property var facts

    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.large
        Item {
            Layout.preferredWidth: Theme.glyphLarge
            Layout.preferredHeight: Theme.glyphLarge
            Layout.alignment: Qt.AlignTop
            Glyph {
                anchors.centerIn: parent
                symbol: root.facts.symbol
                size: Theme.glyphLarge
                tint: root.facts.isGranted ? Theme.positive : root.facts.isChecking ? Theme.secondary : Theme.caution
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: Theme.tiny
            Words {
                Layout.fillWidth: true
                font.pixelSize: Theme.heading
                font.weight: Font.DemiBold
                text: root.facts.title
            }
            Words {
                Layout.fillWidth: true
                isSecondary: true
                text: root.facts.text
            }
        }
    }
}
