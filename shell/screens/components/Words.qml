import QtQuick
import Quillbook

/// A text of the screens. Plain text always: names and messages come from strangers.
Text {
    property bool isSecondary: false
    property bool mayShorten: false ///< Words that the user wrote may end in an ellipsis; ours may not.
    property real leading: Theme.leading ///< Of the type's size; alike in every font.

    color: isSecondary ? Theme.secondary : Theme.ink
    font.family: Theme.family
    font.pixelSize: Theme.body
    lineHeightMode: Text.FixedHeight
    lineHeight: Math.ceil(font.pixelSize * leading)
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
