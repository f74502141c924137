import QtQuick
import Quillbook

/// One of our symbols in one colour. An ornament beside words: screen readers pass it by.
Image {
    id: root
    required property string symbol
    property color tint: Theme.ink
    property real size: Theme.glyph

    width: size
    height: size
    sourceSize: Qt.size(Math.ceil(size), Math.ceil(size))
    source: symbol === "" ? "" : "image://glyph/" + symbol + "/" + ("" + tint).replace("#", "")
    visible: symbol !== ""
    Accessible.ignored: true
}
