import QtQuick
import QtQuick.Layouts
import Quillbook

/// The folder that takes the album.
RowLayout {
    id: root
    required property AppModelAdapter model

    Layout.fillWidth: true
    spacing: Theme.medium
    Glyph {
        symbol: "folder.fill"
        size: Theme.glyphLarge
        tint: Theme.accent
    }
    ColumnLayout {
        Layout.fillWidth: true
        spacing: 0
        Words {
            Layout.fillWidth: true
            text: root.model.destination.name
            mayShorten: true
            font.weight: Font.Medium
            wrapMode: Text.WrapAnywhere
            maximumLineCount: 2
            elide: Text.ElideRight
        }
        Words {
            Layout.fillWidth: true
            text: root.model.destination.path
            mayShorten: true
            isSecondary: true
            font.pixelSize: Theme.caption
            wrapMode: Text.WrapAnywhere
            maximumLineCount: 3
            elide: Text.ElideMiddle
        }
    }
    ActionButton {
        text: qsTr("Choose…")
        hint: qsTr("Choose where to save the album")
        onClicked: root.model.chooseDestination()
    }
}
