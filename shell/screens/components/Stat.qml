import QtQuick
import Quillbook

/// A number and what it counts.
Column {
    id: root
    required property string value
    required property string label

    spacing: Theme.tiny / 2
    Accessible.role: Accessible.StaticText
    Accessible.name: value + " " + label

    Heading {
        anchors.horizontalCenter: parent.horizontalCenter
        text: root.value
        Accessible.ignored: true
    }
    Words {
        anchors.horizontalCenter: parent.horizontalCenter
        isSecondary: true
        font.pixelSize: Theme.caption
        text: root.label
        Accessible.ignored: true
    }
}
