import QtQuick
import Dubrix

/// Shows where the keyboard is, while the keyboard is in use.
Rectangle {
    id: ring

    required property Item target
    property real inset: 0

    anchors.fill: parent
    anchors.margins: inset
    visible: target.activeFocus && KeyboardUse.active
    color: "transparent"
    radius: Theme.points(8)
    border.width: 2
    border.color: Theme.accent
}
