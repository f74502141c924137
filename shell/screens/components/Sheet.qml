import QtQuick
import QtQuick.Templates as T
import Quillbook

/// A sheet over the window: modal, in its middle, never larger than it.
T.Popup {
    id: root
    property string label: ""
    /// The greatest height of what the sheet holds.
    readonly property real room: parent ? parent.height - Theme.huge - topPadding - bottomPadding : 0

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    implicitWidth: Math.min(contentWidth + leftPadding + rightPadding, parent ? parent.width - Theme.huge : 0)
    implicitHeight: Math.min(contentHeight + topPadding + bottomPadding,
                             parent ? parent.height - Theme.huge : 0)
    padding: Theme.wide
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape
    // The item that holds the sheet is the dialog for screen readers.
    Component.onCompleted: contentItem.parent.Accessible.name = Qt.binding(() => root.label)

    T.Overlay.modal: Rectangle {
        color: Theme.scrim
        Accessible.ignored: true
    }
    background: Rectangle {
        radius: Theme.sheetRadius
        color: Theme.window
        border.width: Theme.hair
        border.color: Theme.line
    }
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.quick }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.quick }
    }
}
