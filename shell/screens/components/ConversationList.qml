import QtQuick
import Quillbook

/// The rows; only those in sight exist. Arrow keys, Page, Home and End choose; Return goes on.
FocusScope {
    id: root
    required property AppModelAdapter model
    readonly property int count: list.count
    readonly property int pageRows: Math.max(1, Math.floor(height / (Theme.avatar * 2)) - 1)

    function choose(row) {
        if (count === 0) return
        const wanted = Math.max(0, Math.min(count - 1, row))
        model.selectConversation(model.conversations.idAt(wanted))
        list.positionViewAtIndex(wanted, ListView.Contain)
    }

    activeFocusOnTab: true
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Conversations")
    Accessible.focusable: true
    Keys.onUpPressed: choose(list.currentIndex - 1)
    Keys.onDownPressed: choose(list.currentIndex + 1)
    Keys.onReturnPressed: model.continueToExportSetup()
    Keys.onEnterPressed: model.continueToExportSetup()
    Keys.onPressed: event => {
        const steps = { [Qt.Key_PageUp]: list.currentIndex - pageRows, [Qt.Key_PageDown]: list.currentIndex + pageRows,
                        [Qt.Key_Home]: 0, [Qt.Key_End]: count - 1 }
        if (!(event.key in steps)) return
        choose(steps[event.key])
        event.accepted = true
    }

    FocusRing {
        isShown: root.activeFocus && list.currentIndex < 0 // Else the chosen row shows it.
        offset: -Theme.focusGap
    }
    ListView {
        id: list
        anchors.fill: parent
        anchors.leftMargin: Theme.small
        anchors.rightMargin: Theme.small
        model: root.model.conversations
        currentIndex: -1
        clip: true
        reuseItems: true
        boundsBehavior: Flickable.StopAtBounds
        bottomMargin: Theme.small
        ScrollLine.vertical: ScrollLine {
            parent: root
            anchors { top: parent.top; bottom: parent.bottom; right: parent.right }
            width: Theme.small
            padding: 1
        }
        delegate: ConversationRow {
            width: ListView.view.width
            isSelected: conversationID === root.model.selectedConversationID
            isFocused: isSelected && root.activeFocus
            onChosen: {
                root.forceActiveFocus()
                root.model.selectConversation(conversationID)
            }
        }
        Connections {
            target: root.model
            function onConversationChanged() {
                list.currentIndex = root.model.conversations.rowOf(root.model.selectedConversationID)
            }
        }
        Component.onCompleted: {
            currentIndex = root.model.conversations.rowOf(root.model.selectedConversationID)
            positionViewAtIndex(currentIndex, ListView.Contain)
        }
    }
}
