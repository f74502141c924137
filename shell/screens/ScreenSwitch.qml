import QtQuick
import Quillbook

/// The screen that the model names. A new one comes up out of the old and takes the keyboard.
FocusScope {
    id: root
    required property AppModelAdapter model
    required property bool isCovered ///< By a sheet, which keeps the keyboard.
    readonly property var screens: [onboarding, access, conversations, setup, exporting, complete]

    focus: true

    Loader {
        id: loader
        anchors.fill: parent
        focus: true
        sourceComponent: root.screens[root.model.screen]
        onLoaded: {
            item.focus = true
            if (!root.isCovered) item.forceActiveFocus()
            arrival.restart()
        }
    }
    NumberAnimation {
        id: arrival
        target: loader
        property: "opacity"
        from: 0
        to: 1
        duration: Theme.calm
        easing.type: Easing.OutCubic
    }
    Component { id: onboarding; OnboardingScreen { model: root.model } }
    Component { id: access; AccessScreen { model: root.model } }
    Component { id: conversations; ConversationListScreen { model: root.model } }
    Component { id: setup; ExportSetupScreen { model: root.model } }
    Component { id: exporting; ExportProgressScreen { model: root.model } }
    Component { id: complete; ExportCompleteScreen { model: root.model } }
}
