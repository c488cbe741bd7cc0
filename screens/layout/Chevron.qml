import QtQuick

/// The mark of a row that leads to another screen.
Item {
    id: chevron

    implicitWidth: Theme.points(8)
    implicitHeight: Theme.points(14)

    component Stroke: Rectangle {
        width: Theme.points(2)
        height: Theme.points(9)
        radius: width / 2
        color: Theme.secondaryText
        opacity: 0.7
        antialiasing: true
        x: (chevron.width - width) / 2
    }

    Stroke {
        y: 0
        rotation: -45
    }

    Stroke {
        y: chevron.height - height
        rotation: 45
    }
}
