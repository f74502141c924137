import QtQuick
import QtQuick.Layouts
import Quillbook

/// Where the messages come from, the search, and the list.
FocusScope {
    id: root
    required property AppModelAdapter model

    Accessible.role: Accessible.Pane
    Accessible.name: title.text

    Rectangle {
        anchors.fill: parent
        color: Theme.sidebar
    }
    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        ColumnLayout {
            Layout.fillWidth: true
            Layout.margins: Theme.medium
            spacing: Theme.medium
            Heading {
                id: title
                Layout.fillWidth: true
                Layout.leftMargin: Theme.tiny
                text: qsTr("Conversations")
            }
            SourceMenu {
                Layout.fillWidth: true
                model: root.model
            }
            SearchField {
                id: search
                Layout.fillWidth: true
                focus: true
                prompt: qsTr("Name, number, or message")
                text: root.model.searchText
                onTextEdited: root.model.searchText = text
                onCleared: root.model.searchText = ""
                Keys.onDownPressed: list.forceActiveFocus()
            }
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            ConversationList {
                id: list
                anchors.fill: parent
                model: root.model
            }
            EmptyList {
                anchors.fill: parent
                visible: list.count === 0 && !root.model.isLoading
                onVisibleChanged: if (!visible && activeFocus) search.forceActiveFocus() // Its buttons go with it.
                model: root.model
            }
            Spinner {
                anchors.centerIn: parent
                visible: list.count === 0 && root.model.isLoading
                size: Theme.glyphLarge
            }
        }
    }
}
