import QtQuick

/// Takes files that are dropped on it, and shows so while they are held over it. They are copied:
/// whoever they come from keeps them.
DropArea {
    id: zone

    /// Whether a list of addresses holds a file that can be taken.
    required property var takes

    signal taken(files: var)

    function answer(drag: var) {
        drag.accepted = zone.takes(drag.urls);
        if (drag.accepted)
            drag.accept(Qt.CopyAction);
    }

    onEntered: drag => answer(drag)
    onPositionChanged: drag => answer(drag)
    onDropped: drop => {
        drop.accept(Qt.CopyAction);
        zone.taken(drop.urls);
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.dim
        opacity: zone.containsDrag ? 1 : 0
        visible: opacity > 0

        Behavior on opacity {
            NumberAnimation {
                duration: Theme.duration(120)
            }
        }

        Rectangle {
            anchors {
                fill: parent
                margins: Theme.points(14)
            }
            radius: Theme.points(28)
            color: "transparent"
            border.width: Theme.points(3)
            border.color: "#ffffff"
        }

        Rectangle {
            anchors.centerIn: parent
            width: label.width + Theme.points(40)
            height: label.height + Theme.points(24)
            radius: height / 2
            color: Theme.alert

            Text {
                id: label

                anchors.centerIn: parent
                text: qsTr("Drop to install")
                color: Theme.text
                font.pixelSize: Theme.titleSize
                font.weight: Font.DemiBold
            }
        }
    }
}
