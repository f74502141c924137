import QtQuick
import QtQuick.Templates as T
import Quillbook

/// The one window.
T.ApplicationWindow {
    id: root
    required property AppModelAdapter model
    required property FolderDialogAdapter folderDialog
    property bool startsModel: true
    readonly property bool isTall: model.screen === AppModelAdapter.Screen.onboarding
                                   || model.screen === AppModelAdapter.Screen.access

    title: qsTr("Quillbook")
    width: Theme.windowWidth
    height: Theme.windowHeight
    minimumWidth: Theme.leastWidth
    minimumHeight: isTall ? Theme.leastTallHeight : Theme.leastHeight
    color: Theme.window
    visible: true
    palette {
        window: Theme.surface
        base: Theme.surface
        text: Theme.ink
        windowText: Theme.ink
        buttonText: Theme.ink
        toolTipBase: Theme.surface
        toolTipText: Theme.ink
        highlight: Theme.accent
        highlightedText: Theme.accentInk
    }
    onMinimumHeightChanged: height = Math.max(height, minimumHeight)
    Component.onCompleted: if (startsModel) model.start()

    menuBar: Commands {
        model: root.model
        onAboutWanted: about.open()
        onQuitWanted: root.close()
    }
    ScreenSwitch {
        anchors.fill: parent
        model: root.model
        isCovered: guide.visible || password.visible || alert.visible || about.visible
    }
    SetupGuideSheet { id: guide; model: root.model }
    BackupPasswordSheet { id: password; model: root.model }
    ErrorAlert { id: alert; model: root.model }
    AboutSheet { id: about }
    FolderSheet { question: root.folderDialog }
}
