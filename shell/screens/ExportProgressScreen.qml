import QtQuick
import QtQuick.Layouts
import Quillbook

/// How far the export has come.
FocusScope {
    id: root
    required property AppModelAdapter model
    property bool cancelling: false

    Keys.onPressed: event => page.scroll(event)
    Accessible.role: Accessible.Pane
    Accessible.name: heading.text

    PageScroll {
        id: page
        anchors.fill: parent
        measure: Theme.measure
        spacing: Theme.large

        AlbumStack {
            id: album
            Layout.alignment: Qt.AlignHCenter
            Layout.bottomMargin: Theme.small
            label: root.model.conversation.previewLabel
            monogram: root.model.conversation.monogram
            portrait: root.model.conversation.avatar
            isGroup: root.model.conversation.isGroup
            SequentialAnimation on scale {
                running: !Theme.hasReducedMotion && !root.cancelling
                loops: Animation.Infinite
                NumberAnimation { from: 1; to: Theme.breathDepth; duration: Theme.breath / 2; easing.type: Easing.InOutSine }
                NumberAnimation { from: Theme.breathDepth; to: 1; duration: Theme.breath / 2; easing.type: Easing.InOutSine }
            }
        }
        Heading {
            id: heading
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            maximumLineCount: 3
            elide: Text.ElideRight
            mayShorten: true
            text: root.model.progress.heading
        }
        Words {
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            isSecondary: true
            wrapMode: Text.NoWrap
            maximumLineCount: 1
            elide: Text.ElideMiddle
            mayShorten: true
            text: root.model.progress.detail
        }
        ProgressLine {
            Layout.fillWidth: true
            to: root.model.progress.total
            value: root.model.progress.completed
            Accessible.name: qsTr("Export progress")
        }
        Words {
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            isSecondary: true
            font.pixelSize: Theme.caption
            text: root.model.progress.stageLine
        }
        ActionButton {
            Layout.alignment: Qt.AlignHCenter
            focus: true
            enabled: !root.cancelling
            text: root.cancelling ? qsTr("Cancelling…") : qsTr("Cancel")
            onClicked: {
                root.cancelling = true
                root.model.cancelExport()
            }
        }
    }
}
