import QtQuick
import QtQuick.Layouts
import Quillbook

/// The chosen conversation, or the invitation to choose one.
FocusScope {
    id: root
    required property AppModelAdapter model
    required property bool isSidebarShown
    readonly property var conversation: model.conversation

    signal sidebarToggled

    Keys.onPressed: event => (page.visible ? page : placeholder).scroll(event)
    Accessible.role: Accessible.Pane
    Accessible.name: heading.text

    RowLayout {
        id: toolbar
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: Theme.medium }
        spacing: Theme.small
        IconButton {
            symbol: "sidebar.left"
            text: root.isSidebarShown ? qsTr("Hide Conversations") : qsTr("Show Conversations")
            onClicked: root.sidebarToggled()
        }
        Heading {
            id: heading
            Layout.fillWidth: true
            font.pixelSize: Theme.heading
            text: qsTr("Messages")
        }
        IconButton {
            symbol: "questionmark.circle"
            text: qsTr("How to Get Your Messages")
            hint: qsTr("Steps for getting a complete set of messages, with attachments, onto this Mac")
            onClicked: root.model.openSetupGuide()
        }
    }
    PageScroll {
        id: page
        anchors { left: parent.left; right: parent.right; top: toolbar.bottom; bottom: parent.bottom }
        measure: Theme.measure
        spacing: Theme.large
        visible: root.conversation.isPresent

        AlbumStack {
            Layout.alignment: Qt.AlignHCenter
            label: root.conversation.previewLabel
            monogram: root.conversation.monogram
            portrait: root.conversation.avatar
            isGroup: root.conversation.isGroup
            size: Math.max(Theme.hero, Math.min(Theme.portrait, root.height * 0.34))
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: Theme.tiny
            Heading {
                Layout.fillWidth: true
                horizontalAlignment: Text.AlignHCenter
                maximumLineCount: 3
                elide: Text.ElideRight
                mayShorten: true
                text: root.conversation.title
            }
            Words {
                Layout.fillWidth: true
                visible: text !== ""
                horizontalAlignment: Text.AlignHCenter
                isSecondary: true
                text: root.conversation.peopleLine
            }
            Words {
                Layout.fillWidth: true
                visible: text !== ""
                horizontalAlignment: Text.AlignHCenter
                isSecondary: true
                text: root.conversation.dates
            }
        }
        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            spacing: Theme.huge
            Stat { value: root.conversation.messageCount; label: qsTr("Messages") }
            Stat { value: root.conversation.attachmentCount; label: qsTr("Attachments") }
        }
        ActionButton {
            Layout.alignment: Qt.AlignHCenter
            isProminent: true
            text: qsTr("Back Up This Conversation")
            hint: qsTr("Creates an album from this conversation")
            onClicked: root.model.continueToExportSetup()
        }
        NotedLine {
            Layout.alignment: Qt.AlignHCenter
            Layout.fillWidth: false
            Layout.maximumWidth: parent.width
            symbol: "checkmark.shield"
            isSecondary: true
            text: qsTr("The original Messages library will not be changed.")
        }
    }
    Placeholder {
        id: placeholder
        anchors { left: parent.left; right: parent.right; top: toolbar.bottom; bottom: parent.bottom }
        visible: !root.conversation.isPresent
        offersSidebar: !root.isSidebarShown
        onSidebarWanted: root.sidebarToggled()
    }
}
