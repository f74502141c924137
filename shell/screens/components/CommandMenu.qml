import QtQuick
import QtQuick.Templates as T
import Quillbook

T.Menu {
    id: root
    implicitWidth: contentItem.implicitWidth + leftPadding + rightPadding
    implicitHeight: contentHeight + topPadding + bottomPadding
    padding: Theme.tiny
    overlap: 1
    // The item that holds the menu bears its name for screen readers.
    Component.onCompleted: contentItem.parent.Accessible.name = Qt.binding(() => root.title)

    delegate: CommandMenuItem { }
    contentItem: ListView {
        implicitWidth: {
            let widest = Theme.portrait
            for (let i = 0; i < root.count; ++i) widest = Math.max(widest, root.itemAt(i).implicitWidth)
            return widest
        }
        implicitHeight: contentHeight
        model: root.contentModel
        interactive: Window.window ? contentHeight > Window.window.height : false
        clip: true
        currentIndex: root.currentIndex
    }
    background: Rectangle {
        radius: Theme.radius
        color: Theme.surface
        border.width: Theme.hair
        border.color: Theme.line
    }
}
