import QtQuick
import Quillbook

/// Shows where the keyboard is, round its parent.
Rectangle {
    id: root
    required property bool isShown
    property real offset: Theme.focusGap + Theme.focusWidth

    anchors.fill: parent
    anchors.margins: -offset
    color: Theme.clear
    radius: Math.max(0, Theme.radius + offset)
    border.width: Theme.focusWidth
    border.color: Theme.accent
    visible: isShown
}
