import QtQuick
import Quillbook

Words {
    leading: Theme.headingLeading
    font.pixelSize: Theme.title
    font.weight: Font.DemiBold
    Accessible.role: Accessible.Heading
}
