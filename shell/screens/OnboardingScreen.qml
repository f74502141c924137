import QtQuick
import QtQuick.Layouts
import Quillbook

/// A few pages on what the application does and what it can't do.
FocusScope {
    id: root
    required property AppModelAdapter model
    readonly property int page: Math.max(0, Math.min(model.onboardingPage, pages.length - 1))
    readonly property bool isLast: page === pages.length - 1
    readonly property var tints: ({ limit: Theme.caution, fact: Theme.accent, reassurance: Theme.positive })
    readonly property var pages: [
        { glyph: "mark", title: qsTr("Back up a conversation. Keep every memory."),
          body: qsTr("Quillbook makes a private copy of a conversation from your Mac’s Messages library, so it stays yours if a phone is lost or an account closes."),
          points: [] },
        { glyph: "book.closed", title: qsTr("You get an album, not a file"),
          body: qsTr("Each backup is an ordinary folder on your Mac."),
          points: [
              { symbol: "safari", role: "fact", text: qsTr("Open it and the conversation appears as it did in Messages, in any web browser.") },
              { symbol: "photo.on.rectangle.angled", role: "fact", text: qsTr("Photos, videos and voice notes are copied at their original quality.") },
              { symbol: "externaldrive", role: "fact", text: qsTr("It needs no internet connection and works on any computer, for as long as you keep the folder.") }] },
        { glyph: "hand.raised", title: qsTr("A few things to know"),
          body: qsTr("So there are no surprises later."),
          points: [
              { symbol: "person.2.fill", role: "limit", text: qsTr("You back up one conversation at a time.") },
              { symbol: "icloud.slash", role: "limit", text: qsTr("Only what is already on this Mac can be copied. For everything, including photos Messages keeps in iCloud, back your iPhone up to this Mac with encryption on — the next screen shows how.") },
              { symbol: "checkmark.shield", role: "reassurance", text: qsTr("Your Messages library is only ever read, never changed.") }] }
    ]

    Keys.onPressed: event => scroller.scroll(event)
    Accessible.role: Accessible.Pane
    Accessible.name: pages[page].title

    PageScroll {
        id: scroller
        anchors { left: parent.left; right: parent.right; top: parent.top; bottom: bar.top }
        measure: Theme.measure

        OnboardingPage {
            Layout.fillWidth: true
            page: root.pages[root.page]
            tints: root.tints
        }
        ActionButton {
            Layout.alignment: Qt.AlignHCenter
            visible: root.isLast
            isQuiet: true
            symbol: "questionmark.circle"
            text: qsTr("How to get your messages onto this Mac…")
            onClicked: root.model.openSetupGuide()
        }
    }
    BottomBar {
        id: bar
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        leading: ActionButton {
            text: root.model.isReplayingOnboarding ? qsTr("Done") : qsTr("Skip")
            onClicked: root.model.finishOnboarding()
        }
        note: qsTr("Step %1 of %2").arg(root.page + 1).arg(root.pages.length)
        main: ActionButton {
            isProminent: true
            focus: true
            text: !root.isLast ? qsTr("Continue")
                : root.model.isReplayingOnboarding ? qsTr("Done") : qsTr("Get Started")
            onClicked: root.isLast ? root.model.finishOnboarding() : root.model.showNextOnboardingPage()
        }
    }
}
