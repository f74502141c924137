import QtQuick
import QtQuick.Layouts
import Quillbook

/// One way of getting the messages here: what, the steps, and a note behind them.
Card {
    id: root
    property bool isFirst: false ///< Carries the label of the way to try first.
    property bool isWarning: false
    required property string symbol
    required property string heading
    required property string subheading
    required property var steps
    required property string noteSymbol
    required property string noteHeading
    required property string note

    spacing: Theme.large

    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.medium
        Glyph {
            Layout.alignment: Qt.AlignTop
            symbol: root.symbol
            tint: Theme.accent
            size: Theme.glyphLarge
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: Theme.tiny
            Rectangle {
                visible: root.isFirst
                implicitWidth: label.implicitWidth + 2 * Theme.small
                implicitHeight: label.implicitHeight + Theme.tiny
                radius: height / 2
                color: Theme.accentSoft
                Words {
                    id: label
                    anchors.centerIn: parent
                    text: qsTr("Try this first")
                    color: Theme.accent
                            font.pixelSize: Theme.caption
                    font.weight: Font.DemiBold
                }
            }
            Heading {
                Layout.fillWidth: true
                font.pixelSize: Theme.heading
                text: root.heading
            }
            Words {
                Layout.fillWidth: true
                isSecondary: true
                text: root.subheading
            }
        }
    }
    NumberedSteps {
        Layout.fillWidth: true
        steps: root.steps
    }
    NoteBox {
        Layout.fillWidth: true
        isWarning: root.isWarning
        symbol: root.noteSymbol
        heading: root.noteHeading
        text: root.note
    }
}
