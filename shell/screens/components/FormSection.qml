import QtQuick
import Quillbook

/// A named group of rows.
Item {
    id: root
    default property alias rows: card.rows
    required property string title

    implicitWidth: Math.max(heading.implicitWidth, card.implicitWidth)
    implicitHeight: card.y + card.implicitHeight

    Heading {
        id: heading
        anchors { left: parent.left; leftMargin: Theme.tiny; right: parent.right }
        font.pixelSize: Theme.body
        text: root.title
    }
    Card {
        id: card
        anchors { left: parent.left; right: parent.right; top: heading.bottom; topMargin: Theme.small }
    }
}
