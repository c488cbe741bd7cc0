pragma ComponentBehavior: Bound

import QtQuick

/// The mark of a row that leads to another screen.
Item {
    id: chevron

    property color color: Theme.secondaryText
    property bool mirrored: false

    opacity: 0.8
    implicitWidth: Theme.points(8)
    implicitHeight: Theme.points(14)

    component Stroke: Rectangle {
        width: Theme.points(2)
        height: Theme.points(9)
        radius: width / 2
        color: chevron.color
        antialiasing: true
        x: (chevron.width - width) / 2
    }

    Stroke {
        y: 0
        rotation: chevron.mirrored ? 45 : -45
    }

    Stroke {
        y: chevron.height - height
        rotation: chevron.mirrored ? -45 : 45
    }
}
