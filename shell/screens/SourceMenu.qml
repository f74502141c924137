import QtQuick
import QtQuick.Layouts
import Quillbook

/// The source in use; pressed, it lists all.
ActionButton {
    id: root
    required property AppModelAdapter model

    text: model.sourceTitle
    Layout.maximumWidth: Number.POSITIVE_INFINITY
    implicitHeight: Theme.control
    Accessible.role: Accessible.ButtonMenu
    onClicked: menu.visible ? menu.close() : menu.open()

    contentItem: RowLayout {
        spacing: Theme.small
        Glyph { symbol: root.model.sourceSymbol }
        Words {
            Layout.fillWidth: true
            text: root.text
            mayShorten: true
            wrapMode: Text.NoWrap
            maximumLineCount: 1
            elide: Text.ElideRight
            Accessible.ignored: true
        }
        Spinner { visible: root.model.isLoading }
        Glyph { symbol: "chevron.up.chevron.down"; tint: Theme.secondary; visible: !root.model.isLoading }
    }
    CommandMenu {
        id: menu
        title: root.text
        y: root.height + Theme.tiny
        width: Math.max(root.width, implicitWidth)
        Instantiator {
            model: root.model.sources
            delegate: SourceMenuItem {
                required property var modelData
                source: modelData
                onTriggered: root.model.selectSource(modelData.id)
            }
            onObjectAdded: (index, object) => menu.insertItem(index, object)
            onObjectRemoved: (index, object) => menu.removeItem(object)
        }
    }
}
