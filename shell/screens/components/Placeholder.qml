import QtQuick
import QtQuick.Layouts
import Quillbook

/// Nothing is chosen yet.
PageScroll {
    id: root
    required property bool offersSidebar
    signal sidebarWanted

    spacing: Theme.small
    AlbumStack {
        Layout.alignment: Qt.AlignHCenter
        Layout.bottomMargin: Theme.medium
        label: ""
        size: Theme.hero
        opacity: Theme.resting
        Accessible.ignored: true
    }
    Heading {
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        text: qsTr("Choose a Conversation")
    }
    Words {
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        isSecondary: true
        text: qsTr("Select the conversation you want to preserve.")
    }
    ActionButton {
        Layout.alignment: Qt.AlignHCenter
        Layout.topMargin: Theme.small
        visible: root.offersSidebar
        isProminent: true
        text: qsTr("Show Conversations")
        onClicked: root.sidebarWanted()
    }
}
