import QtQuick
import QtQuick.Controls.Basic as Basic
import Quillbook

/// The conversations of the source in use, and the one that is chosen.
FocusScope {
    id: root
    required property AppModelAdapter model
    property bool isSidebarShown: true

    onIsSidebarShownChanged: (isSidebarShown ? sidebar : detail).forceActiveFocus() // What hides takes no keys along.

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Messages")

    Basic.SplitView {
        anchors.fill: parent
        orientation: Qt.Horizontal

        ConversationSidebar {
            id: sidebar
            Basic.SplitView.preferredWidth: Theme.sidebarWidth
            Basic.SplitView.minimumWidth: Theme.sidebarLeast
            Basic.SplitView.maximumWidth: Theme.sidebarMost
            visible: root.isSidebarShown
            focus: true
            model: root.model
        }
        ConversationDetail {
            id: detail
            Basic.SplitView.fillWidth: true
            Basic.SplitView.minimumWidth: Theme.detailLeast
            model: root.model
            isSidebarShown: root.isSidebarShown
            onSidebarToggled: root.isSidebarShown = !root.isSidebarShown
        }
        handle: Rectangle {
            implicitWidth: Theme.hair
            color: Theme.line
            containmentMask: Item {
                x: -Theme.tiny
                width: 2 * Theme.tiny + Theme.hair
                height: parent ? parent.height : 0
            }
        }
    }
}
