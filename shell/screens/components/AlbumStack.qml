import QtQuick
import Quillbook

/// The album as a small pile of pages, the newest picture on top. Without pictures the top page shows whom it
/// is about.
Item {
    id: root
    required property string label
    property var pictures: []
    property string monogram: ""
    property string portrait: ""
    property bool isGroup: false
    property real size: Theme.portrait
    readonly property var leans: [-7, 5, -2.5, 8, 0]

    implicitWidth: size * 1.25
    implicitHeight: size
    Accessible.role: Accessible.Graphic
    Accessible.name: label

    Repeater {
        model: 5
        Rectangle {
            id: page
            required property int index
            readonly property bool isTop: index === 4
            readonly property int place: 4 - index
            readonly property bool hasPicture: place < root.pictures.length

            anchors.centerIn: parent
            anchors.horizontalCenterOffset: isTop ? 0 : (index % 2 ? 1 : -1) * root.size * 0.05
            width: root.size * 0.78
            height: root.size * 0.9
            visible: index > 1 || hasPicture
            rotation: root.leans[index]
            antialiasing: true
            radius: Theme.tiny
            color: Theme.paper
            border.width: Theme.hair
            border.color: Theme.paperLine

            Image {
                id: picture
                anchors { fill: parent; margins: root.size * 0.04; bottomMargin: root.size * 0.11 }
                source: page.hasPicture ? root.pictures[page.place] : ""
                sourceSize: Qt.size(Math.ceil(root.size), Math.ceil(root.size))
                asynchronous: true
                fillMode: Image.PreserveAspectCrop
                clip: true
                antialiasing: true
                Accessible.ignored: true
            }
            Avatar {
                anchors { horizontalCenter: parent.horizontalCenter; top: parent.top; topMargin: root.size * 0.14 }
                visible: page.isTop && picture.status !== Image.Ready && root.monogram + root.portrait !== ""
                         || page.isTop && picture.status !== Image.Ready && root.isGroup
                size: root.size * 0.34
                monogram: root.monogram
                picture: root.portrait
                isGroup: root.isGroup
            }
            // Lines that stand for messages.
            Column {
                visible: picture.status !== Image.Ready
                anchors { left: parent.left; right: parent.right; bottom: parent.bottom
                          margins: root.size * 0.09 }
                spacing: root.size * 0.035
                Repeater {
                    model: [0.62, 0.8, 0.5]
                    Rectangle {
                        required property real modelData
                        required property int index
                        width: parent.width * modelData
                        x: index === 1 ? parent.width - width : 0
                        height: root.size * 0.04
                        radius: height / 2
                        color: index === 1 ? Theme.accentSoft : Theme.paperLine
                    }
                }
            }
        }
    }
}
