import QtQuick
import QtQuick.Layouts
import Quillbook

/// A column in the middle of the screen that scrolls where it is taller; a focused control is always in sight.
Flickable {
    id: root
    default property alias rows: column.data
    property alias spacing: column.spacing
    property real measure: Theme.formWidth
    property bool isCentered: true
    readonly property Item focused: Window.activeFocusItem

    function reveal(item) {
        if (item === null || !isAncestor(item)) return
        // Where a screen puts the keyboard itself, its top stays in sight.
        if (item.focusReason !== Qt.TabFocusReason && item.focusReason !== Qt.BacktabFocusReason) return
        const top = item.mapToItem(contentItem, 0, 0).y - Theme.wide
        const bottom = top + item.height + 2 * Theme.wide
        if (top < contentY) contentY = Math.max(0, top)
        else if (bottom > contentY + height) contentY = Math.min(contentHeight - height, bottom - height)
    }
    /// Arrows, Page, Home and End, where nothing else takes them.
    function scroll(event) {
        const steps = { [Qt.Key_Up]: -Theme.huge, [Qt.Key_Down]: Theme.huge, [Qt.Key_PageUp]: Theme.huge - height,
                        [Qt.Key_PageDown]: height - Theme.huge, [Qt.Key_Home]: -contentHeight,
                        [Qt.Key_End]: contentHeight }
        if (!(event.key in steps)) return
        contentY = Math.max(0, Math.min(contentHeight - height, contentY + steps[event.key]))
        event.accepted = true
    }
    function isAncestor(item) {
        for (let each = item; each !== null; each = each.parent)
            if (each === contentItem) return true
        return false
    }

    clip: true
    contentWidth: width
    contentHeight: Math.max(height, column.implicitHeight + 2 * Theme.vast)
    boundsBehavior: Flickable.StopAtBounds
    flickableDirection: Flickable.VerticalFlick
    onFocusedChanged: reveal(focused)
    ScrollLine.vertical: ScrollLine { }

    ColumnLayout {
        id: column
        width: Math.min(root.measure, root.width - 2 * Theme.wide)
        x: (root.width - width) / 2
        y: root.isCentered ? Math.max(Theme.vast, (root.height - implicitHeight) / 2) : Theme.vast
        spacing: Theme.wide
    }
}
