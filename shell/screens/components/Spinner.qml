import QtQuick
import Quillbook

/// Something goes on, for an unknown time. Still where the user wants no movement.
Glyph {
    id: root
    symbol: "arrow.triangle.2.circlepath"
    tint: Theme.secondary
    Accessible.ignored: true
    // In steps: without a graphics card each picture of the window takes the processor's time from the work.
    SequentialAnimation {
        loops: Animation.Infinite
        running: root.visible && !Theme.hasReducedMotion
        PauseAnimation { duration: Theme.breath / 24 }
        ScriptAction { script: root.rotation = (root.rotation + 30) % 360 }
    }
}
