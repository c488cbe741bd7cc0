pragma ComponentBehavior: Bound

import QtQuick

/// The mark of the current choice.
Item {
    id: mark

    property color color: Theme.accent

    implicitWidth: Theme.points(15)
    implicitHeight: Theme.points(13)

    component Stroke: Rectangle {
        height: Theme.points(2.2)
        radius: height / 2
        color: mark.color
        antialiasing: true
        transformOrigin: Item.Right
    }

    // Both strokes meet at the foot of the mark.
    Stroke {
        x: Theme.points(6) - width
        y: Theme.points(11) - height / 2
        width: Theme.points(6.5)
        rotation: 45
    }

    Stroke {
        x: Theme.points(6.2) - width
        y: Theme.points(11) - height / 2
        width: Theme.points(13)
        rotation: 128
    }
}
