import QtQuick
import QtQuick.Layouts
import Quillbook

/// A note with a symbol and a heading; tinted where it warns.
Rectangle {
    id: root
    property bool isWarning: false
    required property string symbol
    required property string heading
    required property string text

    implicitHeight: column.implicitHeight + 2 * Theme.medium
    radius: Theme.radius
    color: isWarning ? Theme.cautionSoft : Theme.accentSoft

    ColumnLayout {
        id: column
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: Theme.medium }
        spacing: Theme.tiny
        NotedLine {
            Layout.fillWidth: true
            symbol: root.symbol
            tint: root.isWarning ? Theme.caution : Theme.accent
            text: root.heading
            words.font.weight: Font.DemiBold
        }
        Words {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.glyph + Theme.medium
            text: root.text
        }
    }
}
