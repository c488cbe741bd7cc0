import QtQuick

/// Dims what lies below it and keeps everything that a pointer does from that.
Rectangle {
    id: shade

    signal tapped

    color: Theme.dim

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons
        hoverEnabled: true
        preventStealing: true
        onClicked: shade.tapped()
        onWheel: wheel => wheel.accepted = true
    }
}
