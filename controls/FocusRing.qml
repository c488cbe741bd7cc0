import QtQuick
import DubrixControls

/// Shows where the keyboard is, while the keyboard is in use.
Rectangle {
    property Item target: parent
    property real inset: 0

    anchors.fill: parent
    anchors.margins: inset
    z: 1
    visible: target.activeFocus && KeyboardUse.active
    color: "transparent"
    radius: Theme.points(8)
    border.width: 2
    border.color: Theme.accent
}
