pragma ComponentBehavior: Bound

import QtQuick

/// A busy indicator of twelve spokes that fade round.
Item {
    id: spinner

    property color color: Theme.secondaryText
    property bool running: true
    property int step: 0

    implicitWidth: Theme.points(20)
    implicitHeight: Theme.points(20)
    Accessible.role: Accessible.Indicator
    Accessible.name: qsTr("In progress")
    Accessible.ignored: !visible

    Repeater {
        model: 12

        Rectangle {
            id: spoke

            required property int index

            x: (spinner.width - width) / 2
            width: spinner.width * 0.085
            height: spinner.height * 0.27
            radius: width / 2
            antialiasing: true
            color: spinner.color
            opacity: 1 - 0.75 * ((spinner.step - spoke.index + 12) % 12) / 11
            transform: Rotation {
                origin.x: spinner.width * 0.0425
                origin.y: spinner.height / 2
                angle: spoke.index * 30
            }
        }
    }

    Timer {
        interval: 80
        repeat: true
        running: spinner.running && spinner.visible
        onTriggered: spinner.step = (spinner.step + 1) % 12
    }
}
