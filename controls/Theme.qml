pragma Singleton

import QtQuick
import DubrixControls

/// Every colour, size, font and duration that both windows share. Light or dark follows the system's
/// palette; sizes follow the system's font.
QtObject {
    id: theme

    readonly property SystemPalette systemPalette: SystemPalette {}
    readonly property bool dark: Appearance.isDark(systemPalette.window)
    /// Pixels to the point.
    readonly property real scale: Math.max(1, Application.font.pointSize / 11)
    /// Whether movements are left out.
    readonly property bool still: Appearance.still

    readonly property color ground: dark ? "#000000" : "#f2f2f7"
    readonly property color card: dark ? "#1c1c1e" : "#ffffff"
    readonly property color cardPressed: dark ? "#3a3a3c" : "#d8d8de"
    readonly property color bar: dark ? "#161618" : "#fafafc"
    readonly property color separator: dark ? "#38383a" : "#d4d4d9"
    readonly property color text: dark ? "#ffffff" : "#0b0b0f"
    readonly property color secondaryText: dark ? "#a5a5ae" : "#6a6a72"
    readonly property color accentOnDark: "#9d97ff"
    readonly property color accentOnLight: "#4f46d8"
    readonly property color accent: dark ? accentOnDark : accentOnLight
    readonly property color onAccent: dark ? "#15131f" : "#ffffff"
    readonly property color danger: dark ? "#ff8a80" : "#c62828"
    readonly property color switchOff: dark ? "#55555c" : "#c3c3ca"
    readonly property color fieldBorder: dark ? "#48484a" : "#c8c8ce"
    readonly property color dim: dark ? "#99000000" : "#4d000000"
    /// What comes over the window for a while: alerts, menus, banners.
    readonly property color alert: dark ? "#2a2a2d" : "#f8f8fa"
    readonly property color alertPressed: dark ? "#434347" : "#e0e0e6"
    readonly property color swatchBorder: "#33000000"
    readonly property color overlayMaterial: dark ? "#f0c8c8ce" : "#f7f2f2f5"

    readonly property real margin: points(16)
    readonly property real cardRadius: points(11)
    readonly property real sheetRadius: points(14)
    readonly property real iconRadius: points(6.5)
    readonly property real hairline: 1
    readonly property real contentWidth: points(560)

    readonly property real largeTitleSize: points(32)
    readonly property real titleSize: points(17)
    readonly property real bodySize: points(17)
    readonly property real remarkSize: points(15)
    readonly property real noteSize: points(13)
    readonly property real tabSize: points(11)

    function isLight(color: color): bool {
        return 0.299 * color.r + 0.587 * color.g + 0.114 * color.b > 0.55;
    }
    /// Black or white, whichever stands out from `ground`.
    function inkOn(ground: color): color {
        return isLight(ground) ? "#0b0b0f" : "#ffffff";
    }
    function points(length: real): real {
        return length * theme.scale;
    }
    /// Milliseconds that a movement of `milliseconds` takes here.
    function duration(milliseconds: int): int {
        return theme.still ? 0 : milliseconds;
    }
}
