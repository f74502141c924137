import QtQuick
import QtQuick.Layouts
import Quillbook

/// Gets the user through giving access to the messages.
FocusScope {
    id: root
    required property AppModelAdapter model
    readonly property var steps: [
        qsTr("Click “Open Full Disk Access” below. System Settings will open."),
        qsTr("Click the + button under the list, and enter your Mac’s password if asked."),
        qsTr("Choose Quillbook in the Applications folder, then click Open."),
        qsTr("Turn the switch next to Quillbook on."),
        qsTr("Come back here and click “Check Again”.")
    ]

    Keys.onPressed: event => page.scroll(event)
    Accessible.role: Accessible.Pane
    Accessible.name: title.text

    PageScroll {
        id: page
        anchors.fill: parent
        measure: Theme.measure
        spacing: Theme.large

        Mark { Layout.alignment: Qt.AlignHCenter }
        Heading {
            id: title
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: Theme.display
            text: qsTr("Two permissions, then you’re ready")
        }
        Words {
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            isSecondary: true
            text: qsTr("macOS keeps your messages private, so it asks your permission before any app can read them. Quillbook also asks for Contacts, so albums show names and photos instead of phone numbers; decline that one and everything still works. Your conversations stay on this Mac.")
        }
        AccessCard {
            Layout.fillWidth: true
            facts: root.model.access
        }
        NumberedSteps {
            Layout.fillWidth: true
            visible: root.model.access.showsSteps
            steps: root.steps
        }
        Flow {
            Layout.alignment: Qt.AlignHCenter
            spacing: Theme.medium
            ActionButton {
                visible: root.model.hasPrivacySettings
                text: qsTr("Open Full Disk Access…")
                hint: qsTr("Opens System Settings to the Full Disk Access list")
                onClicked: root.model.openPrivacySettings()
            }
            ActionButton {
                isProminent: true
                focus: true
                text: qsTr("Check Again")
                hint: qsTr("Re-checks whether Quillbook can read your Messages library")
                onClicked: root.model.start()
            }
        }
        ActionButton {
            Layout.alignment: Qt.AlignHCenter
            isQuiet: true
            symbol: "questionmark.circle"
            text: qsTr("Not sure your messages are all on this Mac?")
            onClicked: root.model.openSetupGuide()
        }
        Words {
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: Theme.caption
            isSecondary: true
            text: qsTr("Your Messages database is opened read-only. Full Disk Access can be revoked at any time in System Settings.")
        }
        Words {
            Layout.fillWidth: true
            visible: text !== ""
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: Theme.caption
            text: root.model.placesHint
        }
    }
}
