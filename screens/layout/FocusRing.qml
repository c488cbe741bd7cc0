import QtQuick

/// Shows where the keyboard is. Only while the keyboard is in use, not after a tap.
Rectangle {
    id: ring

    required property Item target
    property real inset: 0

    anchors.fill: parent
    anchors.margins: inset
    visible: target.activeFocus
    color: "transparent"
    radius: Theme.points(8)
    border.width: 2
    border.color: Theme.accent
}
