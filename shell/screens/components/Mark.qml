import QtQuick
import Quillbook

/// The application's own mark.
Image {
    width: Theme.mark
    height: Theme.mark
    sourceSize: Qt.size(width, height)
    source: "qrc:/quillbook/icon/quillbook.svg"
    Accessible.ignored: true
}
