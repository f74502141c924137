import QtQuick
import Quillbook

/// Something goes on, for an unknown time. Still where the user wants no movement.
Glyph {
    id: root
    symbol: "arrow.triangle.2.circlepath"
    tint: Theme.secondary
    Accessible.ignored: true
    RotationAnimation on rotation {
        from: 0
        to: 360
        duration: Theme.breath / 2
        loops: Animation.Infinite
        running: root.visible && !Theme.hasReducedMotion
    }
}
