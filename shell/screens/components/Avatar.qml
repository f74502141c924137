import QtQuick
import Quillbook

/// A person or a group: the picture where it decodes, else a symbol or initials.
Rectangle {
    id: root
    required property string monogram
    required property string picture
    required property bool isGroup
    property real size: Theme.avatar

    width: size
    height: size
    radius: size / 2
    color: Theme.accentSoft
    Accessible.ignored: true

    Text {
        anchors.centerIn: parent
        visible: !photo.isShown && !root.isGroup && root.monogram !== ""
        text: root.monogram
        textFormat: Text.PlainText
        color: Theme.accent
        font.family: Theme.family
        font.pixelSize: root.size * 0.38
        font.weight: Font.DemiBold
    }
    Glyph {
        anchors.centerIn: parent
        visible: !photo.isShown && (root.isGroup || root.monogram === "")
        symbol: root.isGroup ? "person.2.fill" : "person.fill"
        tint: Theme.accent
        size: root.size * 0.55
    }
    Image {
        id: photo
        readonly property bool isShown: status === Image.Ready
        anchors.fill: parent
        source: root.picture
        sourceSize: Qt.size(Math.ceil(root.size), Math.ceil(root.size))
        asynchronous: true
        Accessible.ignored: true
    }
}
