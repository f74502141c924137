import QtQuick
import Quillbook

/// How a switch looks.
Rectangle {
    id: root
    required property bool isOn

    implicitWidth: Theme.switchWidth
    implicitHeight: Theme.switchHeight
    radius: height / 2
    color: isOn ? Theme.accent : Theme.well
    border.width: Theme.hair
    border.color: isOn ? Theme.accent : Theme.edge
    Accessible.ignored: true
    Behavior on color { ColorAnimation { duration: Theme.quick } }

    Rectangle {
        readonly property real gap: Theme.switchGap
        x: root.isOn ? root.width - width - gap : gap
        anchors.verticalCenter: parent.verticalCenter
        width: root.height - 2 * gap
        height: width
        radius: width / 2
        color: root.isOn ? Theme.accentInk : Theme.secondary
        Behavior on x { NumberAnimation { duration: Theme.quick } }
    }
}
