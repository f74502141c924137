import QtQuick
import QtQuick.Layouts
import Quillbook

/// A name and its value.
RowLayout {
    id: root
    required property string label
    required property string value

    Layout.fillWidth: true
    spacing: Theme.large
    Accessible.role: Accessible.StaticText
    Accessible.name: label + ", " + value
    Words {
        Layout.alignment: Qt.AlignTop
        text: root.label
        wrapMode: Text.NoWrap
        Accessible.ignored: true
    }
    Words {
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignRight
        isSecondary: true
        maximumLineCount: 3
        elide: Text.ElideRight
        mayShorten: true
        text: root.value
        Accessible.ignored: true
    }
}
