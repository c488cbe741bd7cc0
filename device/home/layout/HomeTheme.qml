pragma Singleton

import QtQuick

/// Every colour, size, font and duration of the home screen. Light or dark follows the system's
/// palette; sizes follow the system's font.
QtObject {
    id: theme

    readonly property SystemPalette systemPalette: SystemPalette {}
    readonly property bool dark: systemPalette.window.hslLightness < 0.5
    /// Pixels to the point.
    readonly property real scale: Math.max(1, Application.font.pointSize / 11)
    /// Whether movements are left out.
    property bool still: false

    readonly property color ground: dark ? "#17142f" : "#dfe2fb"
    readonly property color ink: dark ? "#ffffff" : "#14122b"
    readonly property color inkShadow: dark ? "#80000000" : "#66ffffff"
    readonly property color quietInk: dark ? "#b9b6d6" : "#4b4a6b"
    readonly property color glass: dark ? "#33ffffff" : "#73ffffff"
    readonly property color glassEdge: dark ? "#26ffffff" : "#80ffffff"
    readonly property color card: dark ? "#f02a2840" : "#f7fcfcff"
    readonly property color cardPressed: dark ? "#ff434162" : "#ffe4e3f2"
    readonly property color separator: dark ? "#3dffffff" : "#26000000"
    readonly property color accent: dark ? "#a9a3ff" : "#4f46d8"
    readonly property color danger: dark ? "#ff8a80" : "#c62828"
    readonly property color dim: dark ? "#8c000000" : "#59100e2c"

    readonly property real margin: points(16)
    readonly property real iconEdge: points(60)
    readonly property real nameSize: points(12)
    readonly property real noteSize: points(13)
    readonly property real bodySize: points(15)
    readonly property real titleSize: points(17)

    function points(length: real): real {
        return length * theme.scale;
    }
    /// Milliseconds that a movement of `milliseconds` takes here.
    function duration(milliseconds: int): int {
        return theme.still ? 0 : milliseconds;
    }
}
