pragma Singleton
import QtQuick

/// The one place for sizes, colours and movement. The first four follow the user's wishes.
QtObject {
    id: theme

    property bool isDark: false
    property bool hasHighContrast: false
    property bool hasReducedMotion: false
    property real textScale: 1
    property bool isKeyboardInUse: false ///< The last input was a key: what has the focus shows it.

    // Colours: warm paper and ink. Text on its ground has a contrast of 4.5 at least, in both.
    readonly property color window: isDark ? "#1b1a18" : "#f8f6f2"
    readonly property color sidebar: isDark ? "#22211e" : "#f0ede6"
    readonly property color surface: isDark ? "#2a2926" : "#ffffff"
    readonly property color well: isDark ? "#32302c" : "#ebe7df"
    readonly property color ink: isDark ? "#f3f0ea" : "#1f1d1a"
    readonly property color secondary: hasHighContrast ? ink : isDark ? "#b8b2a8" : "#5e5951"
    readonly property color faint: hasHighContrast ? secondary : isDark ? "#6d685f" : "#b3ada2"
    readonly property color edge: hasHighContrast ? ink : isDark ? "#8a8479" : "#857f73" ///< Of controls: 3 to 1 on every ground.
    readonly property color line: hasHighContrast ? ink : isDark ? "#3b3934" : "#dfdad0"
    readonly property color accent: isDark ? "#93b3f4" : "#34579f"
    readonly property color accentPressed: isDark ? "#7d9fe4" : "#28467f"
    readonly property color accentInk: isDark ? "#0f1d3a" : "#ffffff"
    readonly property color accentSoft: isDark ? "#2a3346" : "#e5ebf7"
    readonly property color positive: isDark ? "#82cda2" : "#276745"
    readonly property color caution: isDark ? "#e9b768" : "#8a5200"
    readonly property color cautionSoft: isDark ? "#362e20" : "#fbf1de"
    readonly property color negative: isDark ? "#f39a92" : "#a8251d"
    readonly property color scrim: isDark ? "#99000000" : "#591f1d1a"
    readonly property color shadow: isDark ? "#66000000" : "#291f1d1a"
    readonly property color paper: isDark ? "#46433c" : "#fffdf9"
    readonly property color paperLine: isDark ? "#5a564e" : "#e4dfd4"
    readonly property color clear: "transparent"

    // Type.
    readonly property string family: Qt.application.font.family
    readonly property real caption: 12 * textScale
    readonly property real body: 14 * textScale
    readonly property real heading: 16 * textScale
    readonly property real title: 22 * textScale
    readonly property real display: 28 * textScale
    readonly property real leading: 1.45
    readonly property real headingLeading: 1.25

    // Space.
    readonly property real hair: 1
    readonly property real tiny: 4
    readonly property real small: 8
    readonly property real medium: 12
    readonly property real large: 16
    readonly property real wide: 24
    readonly property real vast: 32
    readonly property real huge: 48

    // Shapes.
    readonly property real radius: 8
    readonly property real cardRadius: 12
    readonly property real sheetRadius: 16
    readonly property real focusWidth: 2
    readonly property real focusGap: 2 ///< Between a control and its ring: on a filled one the ring is seen by it.
    readonly property real inset: 6 ///< Above and below the words of a control.
    readonly property real itemRadius: 6
    readonly property real switchWidth: 40 * textScale
    readonly property real switchHeight: 24 * textScale
    readonly property real switchGap: 3 * textScale
    readonly property real thumb: 6 ///< Of a scroll bar.
    readonly property real thumbGap: 3
    readonly property real disabled: 0.5
    readonly property real resting: 0.75
    readonly property real glyph: 18 * textScale
    readonly property real glyphLarge: 28 * textScale
    readonly property real avatar: 40 * textScale
    readonly property real control: 34 * textScale
    readonly property real field: 34 * textScale
    readonly property real mark: 88
    readonly property real portrait: 220
    readonly property real hero: 140
    readonly property real titleBand: 44 * textScale
    readonly property real measure: 660 * Math.min(textScale, 1.5)
    readonly property real headline: 480 * Math.min(textScale, 1.5)
    readonly property real formWidth: 640 * Math.min(textScale, 1.5)
    readonly property real sheetWidth: 620 * Math.min(textScale, 1.25)
    readonly property real promptWidth: 420 * Math.min(textScale, 1.5)
    readonly property real sidebarWidth: Math.min(340 * textScale, sidebarMost)
    readonly property real sidebarLeast: 260
    readonly property real sidebarMost: 400
    readonly property real detailLeast: 420

    // The window.
    readonly property real windowWidth: 1080
    readonly property real windowHeight: 740
    readonly property real leastWidth: 820
    readonly property real leastHeight: 560
    readonly property real leastTallHeight: 660

    // Movement, in milliseconds; none where the user wants none.
    readonly property int quick: hasReducedMotion ? 0 : 120
    readonly property int calm: hasReducedMotion ? 0 : 260
    readonly property int entrance: hasReducedMotion ? 0 : 620
    readonly property int breath: 2400
    readonly property real breathDepth: 1.035
    readonly property real entranceScale: 0.86
    readonly property int tipDelay: 600
}
