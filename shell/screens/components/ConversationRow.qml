import QtQuick
import QtQuick.Templates as T
import Quillbook

/// One conversation.
Rectangle {
    id: root
    required property string conversationID
    required property string title
    required property string lastMessage
    required property string counts
    required property string date
    required property string dates
    required property string avatar
    required property string monogram
    required property bool isGroup
    property bool isSelected: false
    property bool isFocused: false
    readonly property color firstInk: isSelected ? Theme.accentInk : Theme.ink
    readonly property color secondInk: isSelected ? Theme.accentInk : Theme.secondary

    signal chosen

    implicitHeight: words.implicitHeight + 2 * Theme.medium
    radius: Theme.radius
    color: isSelected ? Theme.accent : hover.hovered ? Theme.well : Theme.clear
    Accessible.role: Accessible.ListItem
    Accessible.name: title
    Accessible.description: [lastMessage, counts, dates].filter(each => each !== "").join("\n")
    Accessible.selectable: true
    Accessible.selected: isSelected
    Accessible.focusable: true
    Accessible.focused: isFocused
    Accessible.onPressAction: chosen()

    HoverHandler { id: hover }
    TapHandler { onTapped: root.chosen() }
    T.ToolTip.visible: hover.hovered && dates !== ""
    T.ToolTip.delay: Theme.tipDelay
    T.ToolTip.text: dates

    FocusRing {
        isShown: root.isFocused
        offset: -Theme.focusGap
        border.color: Theme.accentInk
    }
    Avatar {
        id: picture
        anchors { left: parent.left; leftMargin: Theme.medium; top: parent.top; topMargin: Theme.medium }
        monogram: root.monogram
        picture: root.avatar
        isGroup: root.isGroup
    }
    Column {
        id: words
        anchors { left: picture.right; leftMargin: Theme.medium; right: parent.right; rightMargin: Theme.medium
                  top: parent.top; topMargin: Theme.medium }
        spacing: Theme.tiny / 2
        Item {
            width: parent.width
            height: name.height
            Words {
                id: name
                anchors { left: parent.left; right: day.left; rightMargin: Theme.small }
                text: root.title
                mayShorten: true
                color: root.firstInk
                font.weight: Font.DemiBold
                wrapMode: Text.NoWrap
                maximumLineCount: 1
                elide: Text.ElideRight
                Accessible.ignored: true
            }
            Words {
                id: day
                anchors { right: parent.right; baseline: name.baseline }
                text: root.date
                color: root.secondInk
                font.pixelSize: Theme.caption
                wrapMode: Text.NoWrap
                Accessible.ignored: true
            }
        }
        Words {
            width: parent.width
            visible: text !== ""
            text: root.lastMessage
            mayShorten: true
            color: root.secondInk
            maximumLineCount: 2
            elide: Text.ElideRight
            Accessible.ignored: true
        }
        Words {
            width: parent.width
            text: root.counts
            color: root.secondInk
            font.pixelSize: Theme.caption
            Accessible.ignored: true
        }
    }
}
