import QtQuick
import QtQuick.Layouts
import Quillbook

/// One page's picture, title, text and points.
ColumnLayout {
    id: root
    required property var page
    required property var tints

    spacing: Theme.large
    opacity: 1
    onPageChanged: arrival.restart()

    NumberAnimation {
        id: arrival
        target: root
        property: "opacity"
        from: 0
        to: 1
        duration: Theme.calm
    }
    Item {
        Layout.fillWidth: true
        Layout.preferredHeight: Theme.hero
        Mark {
            anchors.centerIn: parent
            visible: root.page.glyph === "mark"
        }
        Rectangle {
            anchors.centerIn: parent
            visible: root.page.glyph !== "mark"
            width: Theme.mark
            height: Theme.mark
            radius: width / 4
            color: Theme.accentSoft
            Glyph {
                anchors.centerIn: parent
                symbol: root.page.glyph === "mark" ? "" : root.page.glyph
                tint: Theme.accent
                size: Theme.mark / 2
            }
        }
    }
    Heading {
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        font.pixelSize: Theme.display
        text: root.page.title
    }
    Words {
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        font.pixelSize: Theme.heading
        isSecondary: true
        text: root.page.body
    }
    Card {
        Layout.fillWidth: true
        Layout.topMargin: Theme.small
        visible: root.page.points.length > 0
        spacing: Theme.large
        Repeater {
            model: root.page.points
            NotedLine {
                required property var modelData
                Layout.fillWidth: true
                symbol: modelData.symbol
                tint: root.tints[modelData.role]
                text: modelData.text
            }
        }
    }
}
