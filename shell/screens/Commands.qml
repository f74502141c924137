import QtQuick
import QtQuick.Templates as T
import Quillbook

/// The menus. Each command is one call on the model.
T.MenuBar {
    id: root
    required property AppModelAdapter model
    signal aboutWanted
    signal quitWanted

    implicitWidth: contentItem.implicitWidth
    implicitHeight: Theme.control
    leftPadding: Theme.tiny
    delegate: CommandMenuBarItem { }
    contentItem: Row {
        spacing: Theme.tiny / 2
        Repeater { model: root.contentModel }
    }
    background: Rectangle {
        color: Theme.window
        Rectangle {
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
            height: Theme.hair
            color: Theme.line
        }
    }

    CommandMenu {
        title: qsTr("File")
        T.Action {
            text: qsTr("How to Get Your Messages…")
            shortcut: "Ctrl+I"
            onTriggered: root.model.openSetupGuide()
        }
        T.Action {
            text: qsTr("Quit Quillbook")
            shortcut: "Ctrl+Q"
            onTriggered: root.quitWanted()
        }
    }
    CommandMenu {
        title: qsTr("Back Up")
        T.Action {
            text: qsTr("Choose Conversation…")
            shortcut: "Ctrl+N"
            enabled: root.model.canChooseConversation
            onTriggered: root.model.chooseConversation()
        }
        T.Action {
            text: qsTr("Back Up Selected Conversation…")
            shortcut: "Ctrl+E"
            enabled: root.model.canBackUpSelected
            onTriggered: root.model.continueToExportSetup()
        }
        T.Action {
            text: qsTr("How to Get Your Messages…")
            shortcut: "Ctrl+Alt+I"
            onTriggered: root.model.openSetupGuide()
        }
        T.Action {
            text: qsTr("Cancel Backup")
            shortcut: "Ctrl+."
            enabled: root.model.canCancelBackup
            onTriggered: root.model.cancelExport()
        }
    }
    CommandMenu {
        id: help
        title: qsTr("Help")
        T.Action {
            text: qsTr("How Quillbook Works")
            onTriggered: root.model.replayOnboarding()
        }
        T.Action {
            text: qsTr("About Quillbook")
            onTriggered: root.aboutWanted()
        }
    }
    T.Action {
        id: updates
        text: qsTr("Check for Updates…")
        enabled: root.model.canCheckForUpdates
        onTriggered: root.model.checkForUpdates()
    }
    Component.onCompleted: if (root.model.hasUpdates) help.addAction(updates)

    Shortcut { sequence: "F10"; onActivated: root.itemAt(0).triggered() }
    Shortcut { sequence: "Alt+F"; onActivated: root.itemAt(0).triggered() }
    Shortcut { sequence: "Alt+B"; onActivated: root.itemAt(1).triggered() }
    Shortcut { sequence: "Alt+H"; onActivated: root.itemAt(2).triggered() }
}
