import QtQuick
import QtQuick.Templates as T
import Quillbook

T.ScrollBar {
    id: root
    implicitWidth: Theme.medium
    implicitHeight: Theme.medium
    padding: Theme.thumbGap
    minimumSize: 0.05
    visible: size < 1
    Accessible.ignored: true
    contentItem: Rectangle {
        implicitWidth: Theme.thumb
        implicitHeight: Theme.thumb
        radius: Theme.thumb / 2
        color: root.pressed ? Theme.secondary : Theme.edge
    }
}
