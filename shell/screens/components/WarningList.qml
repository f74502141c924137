import QtQuick
import QtQuick.Layouts
import Quillbook

/// What else the album has to say about itself, a line each. Long lists scroll in their place.
Card {
    id: root
    required property string heading
    required property var lines

    NotedLine {
        Layout.fillWidth: true
        symbol: "info.circle"
        tint: Theme.accent
        text: root.heading
        words.font.weight: Font.DemiBold
    }
    Item {
        Layout.fillWidth: true
        Layout.preferredHeight: Math.min(list.contentHeight, Theme.portrait)
        FocusRing { isShown: list.activeFocus }
        ListView {
            id: list
            function scrollBy(step) {
                contentY = Math.max(originY, Math.min(contentY + step, originY + contentHeight - height))
            }

            anchors.fill: parent
            model: root.lines
            clip: true
            spacing: Theme.tiny
            boundsBehavior: Flickable.StopAtBounds
            activeFocusOnTab: interactive
            interactive: contentHeight > height
            Accessible.role: Accessible.List
            Accessible.name: root.heading
            Keys.onUpPressed: scrollBy(-Theme.wide)
            Keys.onDownPressed: scrollBy(Theme.wide)
            ScrollLine.vertical: ScrollLine { }
            delegate: Words {
                required property string modelData
                width: ListView.view.width - Theme.medium
                text: modelData
                Accessible.role: Accessible.ListItem
            }
        }
    }
}
