pragma Singleton

import QtQuick
import DubrixControls

/// What the home screen has beside the theme of both windows: the colours of what lies on its
/// wallpaper, and its icons' sizes.
QtObject {
    readonly property color ground: Theme.dark ? "#17142f" : "#dfe2fb"
    readonly property color ink: Theme.dark ? "#ffffff" : "#14122b"
    readonly property color inkShadow: Theme.dark ? "#80000000" : "#66ffffff"
    readonly property color quietInk: Theme.dark ? "#b9b6d6" : "#4b4a6b"
    readonly property color glass: Theme.dark ? "#33ffffff" : "#73ffffff"
    readonly property color glassEdge: Theme.dark ? "#26ffffff" : "#80ffffff"

    readonly property real iconEdge: Theme.points(60)
    readonly property real nameSize: Theme.points(12)
}
