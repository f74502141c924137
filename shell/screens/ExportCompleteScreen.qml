import QtQuick
import QtQuick.Layouts
import Quillbook

/// What was kept, what could not be kept, and the way to the album.
FocusScope {
    id: root
    required property AppModelAdapter model
    property bool revealed: false
    readonly property var result: model.completion

    Keys.onPressed: event => page.scroll(event)
    Accessible.role: Accessible.Pane
    Accessible.name: heading.text
    Component.onCompleted: {
        model.soundCompletion()
        revealed = true
    }

    PageScroll {
        id: page
        anchors.fill: parent
        measure: Theme.measure
        spacing: Theme.large

        AlbumStack {
            Layout.alignment: Qt.AlignHCenter
            label: root.model.conversation.previewLabel
            pictures: root.result.pictures
            monogram: root.model.conversation.monogram
            portrait: root.model.conversation.avatar
            isGroup: root.model.conversation.isGroup
            size: Math.max(Theme.hero, Math.min(Theme.portrait, root.height * 0.24))
            opacity: root.revealed ? 1 : 0
            scale: root.revealed ? 1 : Theme.entranceScale
            Behavior on opacity { NumberAnimation { duration: Theme.calm } }
            Behavior on scale { NumberAnimation { duration: Theme.entrance; easing.type: Easing.OutBack } }
        }
        Heading {
            id: heading
            Layout.fillWidth: true
            Layout.maximumWidth: Theme.headline
            Layout.alignment: Qt.AlignHCenter
            horizontalAlignment: Text.AlignHCenter
            text: root.result.heading
        }
        MissingCard {
            Layout.fillWidth: true
            visible: root.result.isAnythingMissing
            text: root.result.missing
            findInBackup: root.result.findInBackup
            onFindWanted: root.model.lookInDeviceBackup()
        }
        WarningList {
            Layout.fillWidth: true
            visible: root.result.warnings.length > 0
            heading: root.result.warningsHeading
            lines: root.result.warnings
        }
        Flow {
            Layout.alignment: Qt.AlignHCenter
            spacing: Theme.medium
            ActionButton {
                text: qsTr("Show in Finder")
                hint: qsTr("Shows the archive folder in Finder")
                onClicked: root.model.showInFileManager()
            }
            ActionButton {
                isProminent: true
                focus: true
                text: qsTr("Open Archive")
                hint: qsTr("Opens the album in your browser")
                onClicked: root.model.openArchive()
            }
        }
        ActionButton {
            Layout.alignment: Qt.AlignHCenter
            isQuiet: true
            text: qsTr("Back Up Another Conversation")
            onClicked: root.model.chooseConversation()
        }
    }
}
