import QtQuick
import Quillbook

/// Shows where the keyboard is, round its parent.
Rectangle {
    id: root
    required property bool isShown
    property real offset: 2

    anchors.fill: parent
    anchors.margins: -offset
    color: Theme.clear
    radius: Theme.radius + offset
    border.width: Theme.focusWidth
    border.color: Theme.accent
    visible: isShown
}
