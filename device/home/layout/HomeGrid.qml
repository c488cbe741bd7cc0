import QtQuick
import DubrixControls
import DubrixHome

/// Where icons stand on the pages, and which of them the keyboard is at.
QtObject {
    required property HomeScreen home
    required property size area

    readonly property bool narrow: area.width < Theme.points(480)
    readonly property real side: Theme.points(narrow ? 8 : 28)
    readonly property int columns: narrow ? 4 : Math.floor((area.width - 2 * side) / Theme.points(106))
    readonly property int rows: Math.max(1, Math.floor(area.height / Theme.points(98)))
    /// Icons on a page; 0 as long as the area is not known.
    readonly property int capacity: area.width > 0 && area.height > 0 ? columns * rows : 0
    readonly property real cellWidth: (area.width - 2 * side) / columns
    readonly property real cellHeight: area.height / rows

    /// The position of the icon at which the keyboard is.
    property int current: 0
    /// Whether the keyboard is among the icons.
    property bool entered: false

    signal menuAsked(Item icon, string identifier, string name)
}
