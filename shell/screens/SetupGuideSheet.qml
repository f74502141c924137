import QtQuick
import QtQuick.Layouts
import Quillbook

/// The two ways of getting messages onto this Mac.
Sheet {
    id: root
    required property AppModelAdapter model

    label: title.text
    visible: model.showingSetupGuide
    padding: 0
    contentWidth: Theme.sheetWidth
    contentHeight: page.contentHeight + bar.implicitHeight
    onAboutToHide: model.closeSetupGuide()
    onOpened: done.forceActiveFocus()

    contentItem: FocusScope {
        Keys.onPressed: event => page.scroll(event)
        PageScroll {
            id: page
            anchors { left: parent.left; right: parent.right; top: parent.top; bottom: bar.top }
            measure: Theme.sheetWidth
            isCentered: false
            spacing: Theme.large

            Heading {
                id: title
                Layout.fillWidth: true
                text: qsTr("Getting your messages onto this Mac")
            }
            Words {
                Layout.fillWidth: true
                isSecondary: true
                text: qsTr("Quillbook copies what is stored on this Mac, so the messages need to be here first. There are two ways to bring them over, and neither one can reach into iCloud for something that was never downloaded.")
            }
            GuideSection {
                Layout.fillWidth: true
                isFirst: true
                symbol: "iphone.and.arrow.forward"
                heading: qsTr("Back up your iPhone to this Mac")
                subheading: qsTr("Usually the fuller source, and independent of what this Mac synced")
                steps: [
                    qsTr("Connect your iPhone or iPad to this Mac with a cable."),
                    qsTr("Open Finder. Your device appears in the sidebar, under Locations. Click it."),
                    qsTr("Choose “Back up all of the data on your iPhone to this Mac”."),
                    qsTr("Click “Back Up Now” and let it finish. Large libraries take a while."),
                    qsTr("Come back here. The backup appears in the source menu, ready to export from.")
                ]
                noteSymbol: "info.circle.fill"
                noteHeading: qsTr("Encrypting the backup is optional here")
                note: qsTr("Local backups carry your Messages database whether or not you tick “Encrypt local backup”, so Quillbook reads both. Encryption is worth turning on for other reasons — it is what preserves saved passwords, Health data and call history — and if you use it, Quillbook will ask for that password and use it in memory only, never storing it.")
            }
            GuideSection {
                Layout.fillWidth: true
                symbol: "desktopcomputer"
                heading: qsTr("Use this Mac’s own Messages library")
                subheading: qsTr("Already here, but older attachments may not be")
                steps: [
                    qsTr("Give Quillbook Full Disk Access when it asks. macOS protects the Messages library, so nothing can read it otherwise."),
                    qsTr("Pick the conversation. Quillbook counts its attachments and tells you how many are not on this Mac before you back anything up."),
                    qsTr("If some are missing, open that conversation in Messages and scroll back through it. macOS fetches attachments as they scroll into view."),
                    qsTr("Come back and back it up. Anything still missing is named in the album, never dropped in silence.")
                ]
                isWarning: true
                noteSymbol: "exclamationmark.triangle.fill"
                noteHeading: qsTr("Do not force a sync to chase missing attachments")
                note: qsTr("If the conversation was deleted on another device, there is nothing left in iCloud to pull down, and forcing a sync can push that deletion onto this Mac and destroy the last copy. If a conversation exists here and nowhere else, back it up first and investigate afterwards. Quillbook only ever reads; it cannot change your Messages library.")
            }
            Words {
                Layout.fillWidth: true
                visible: text !== ""
                font.pixelSize: Theme.caption
                text: root.model.placesHint
            }
        }
        BottomBar {
            id: bar
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
            radius: Theme.sheetRadius
            main: ActionButton {
                id: done
                isProminent: true
                focus: true
                text: qsTr("Done")
                onClicked: root.model.closeSetupGuide()
            }
        }
    }
}
