import QtQuick
import QtQuick.Layouts
import Quillbook

/// What the backup will include and where it goes.
FocusScope {
    id: root
    required property AppModelAdapter model

    Keys.onPressed: event => page.scroll(event)
    Accessible.role: Accessible.Pane
    Accessible.name: title.text

    PageScroll {
        id: page
        anchors { left: parent.left; right: parent.right; top: parent.top; bottom: bar.top }
        isCentered: false
        spacing: Theme.wide

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Theme.tiny
            Heading {
                id: title
                Layout.fillWidth: true
                font.pixelSize: Theme.display
                text: qsTr("Ready to preserve")
            }
            Words {
                Layout.fillWidth: true
                isSecondary: true
                text: qsTr("What this backup will include")
            }
        }
        FormSection {
            Layout.fillWidth: true
            title: qsTr("Conversation")
            FactRow { label: qsTr("Conversation"); value: root.model.conversation.title }
            FactRow { label: qsTr("Messages"); value: root.model.conversation.messageCount }
            FactRow { label: qsTr("Attachments"); value: root.model.conversation.attachmentCount }
            NotedLine {
                Layout.fillWidth: true
                visible: root.model.storage.isShown
                symbol: "exclamationmark.triangle"
                tint: Theme.caution
                text: root.model.storage.text
            }
            CacheRecoveryControls {
                Layout.fillWidth: true
                visible: root.model.storage.isShown && root.model.isLocalSource
                model: root.model
            }
        }
        FormSection {
            Layout.fillWidth: true
            title: qsTr("Formats")
            FormatRow {
                kind: "website"
                title: qsTr("Offline website")
                detail: qsTr("Beautiful iMessage-style archive with instant search")
                isOn: true
                locked: true
            }
            FormatRow {
                kind: "json"
                title: qsTr("JSON")
                detail: qsTr("Complete machine-readable archival data")
                isOn: root.model.includeJSON
                onSwitched: isOn => root.model.includeJSON = isOn
            }
            FormatRow {
                kind: "markdown"
                title: qsTr("Markdown")
                detail: qsTr("Readable transcript with attachment links")
                isOn: root.model.includeMarkdown
                onSwitched: isOn => root.model.includeMarkdown = isOn
            }
            FormatRow {
                kind: "csv"
                title: qsTr("CSV")
                detail: qsTr("Flat rows for spreadsheets and analysis")
                isOn: root.model.includeCSV
                onSwitched: isOn => root.model.includeCSV = isOn
            }
        }
        FormSection {
            Layout.fillWidth: true
            title: qsTr("Save to")
            DestinationRow { model: root.model }
        }
        FormSection {
            Layout.fillWidth: true
            visible: root.model.priorArchive.isShown
            title: qsTr("Previously archived")
            FactRow { label: qsTr("Last archived"); value: root.model.priorArchive.date }
            NotedLine {
                Layout.fillWidth: true
                symbol: root.model.priorArchive.symbol
                tint: Theme.accent
                text: root.model.priorArchive.news
            }
            Words {
                Layout.fillWidth: true
                isSecondary: true
                font.pixelSize: Theme.caption
                text: qsTr("A new archive is created alongside the previous one. Attachments you already archived are reused, so this takes very little extra space.")
            }
        }
        NotedLine {
            Layout.fillWidth: true
            symbol: "checkmark.shield"
            tint: Theme.positive
            isSecondary: true
            text: qsTr("Attachments are copied in their original formats. The album also includes a file list you can use later to verify nothing is missing or changed.")
        }
    }
    BottomBar {
        id: bar
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        leading: ActionButton {
            text: qsTr("Back")
            onClicked: root.model.chooseConversation()
        }
        main: ActionButton {
            isProminent: true
            focus: true
            text: qsTr("Back Up Now")
            hint: qsTr("Creates the album now")
            onClicked: root.model.startExport()
        }
    }
}
