import QtQuick
import QtQuick.Templates as T
import Quillbook

T.ProgressBar {
    id: root
    implicitWidth: Theme.measure
    implicitHeight: Theme.small
    Accessible.role: Accessible.ProgressBar

    background: Rectangle {
        radius: height / 2
        color: Theme.well
        border.width: Theme.hasHighContrast ? Theme.hair : 0
        border.color: Theme.line
    }
    contentItem: Item {
        Rectangle {
            width: Math.max(root.visualPosition > 0 ? height : 0, root.visualPosition * parent.width)
            height: parent.height
            radius: height / 2
            color: Theme.accent
            Behavior on width { NumberAnimation { duration: Theme.quick } }
        }
    }
}
