import QtQuick
import QtQuick.Templates as T
import Quillbook

T.ScrollBar {
    id: root
    implicitWidth: Theme.medium
    implicitHeight: Theme.medium
    padding: 3
    minimumSize: 0.05
    visible: size < 1
    Accessible.ignored: true
    contentItem: Rectangle {
        implicitWidth: 6
        implicitHeight: 6
        radius: 3
        color: root.pressed ? Theme.secondary : Theme.faint
        opacity: root.active || Theme.hasHighContrast ? 1 : 0.6
    }
}
