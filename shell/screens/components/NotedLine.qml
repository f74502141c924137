import QtQuick
import QtQuick.Layouts
import Quillbook

/// A symbol and the words that it marks.
RowLayout {
    id: root
    property string symbol: ""
    property color tint: Theme.secondary
    property string text: ""
    property bool isSecondary: false
    property alias words: words

    spacing: Theme.medium

    Glyph {
        Layout.alignment: Qt.AlignTop
        Layout.topMargin: Math.max(0, (words.font.pixelSize * Theme.leading - height) / 2)
        symbol: root.symbol
        tint: root.tint
    }
    Words {
        id: words
        Layout.fillWidth: true
        text: root.text
        isSecondary: root.isSecondary
    }
}
