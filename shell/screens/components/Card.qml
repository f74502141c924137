import QtQuick
import QtQuick.Layouts
import Quillbook

/// A quiet box round what belongs together; its children stand below each other.
Rectangle {
    id: root
    default property alias rows: column.data
    property alias spacing: column.spacing
    property real padding: Theme.large

    implicitWidth: column.implicitWidth + 2 * padding
    implicitHeight: column.implicitHeight + 2 * padding
    color: Theme.surface
    radius: Theme.cardRadius
    border.width: Theme.hair
    border.color: Theme.line

    ColumnLayout {
        id: column
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: root.padding }
        spacing: Theme.medium
    }
}
