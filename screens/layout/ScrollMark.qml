import QtQuick

/// Shows which part of a list is seen, while it moves or the pointer is near; it can be dragged.
Item {
    id: mark

    required property ListView list

    readonly property real part: Math.max(list.visibleArea.heightRatio, Theme.points(36) / height)
    readonly property bool needed: list.visibleArea.heightRatio < 1 && list.count > 0

    function drag(y: real) {
        const travel = 1 - thumb.height / height;
        const place = Math.max(0, Math.min(1, (y - thumb.height / 2) / height / travel));
        const end = list.contentHeight + list.bottomMargin - list.height;
        list.contentY = list.originY + place * end;
    }

    width: Theme.points(14)
    visible: needed
    Accessible.ignored: true

    Rectangle {
        id: thumb

        readonly property real hidden: 1 - mark.list.visibleArea.heightRatio

        anchors.right: parent.right
        anchors.rightMargin: Theme.points(4)
        y: (mark.height - height) * Math.max(0, Math.min(1, mark.list.visibleArea.yPosition
                                                            / hidden))
        width: Theme.points(area.containsMouse || area.pressed ? 6 : 4)
        height: mark.height * mark.part
        radius: width / 2
        color: Theme.secondaryText
        opacity: mark.list.moving || area.containsMouse || area.pressed ? 0.75 : 0.3

        Behavior on opacity {
            NumberAnimation {
                duration: 220
            }
        }
    }

    MouseArea {
        id: area

        anchors.fill: parent
        hoverEnabled: true
        preventStealing: true
        onPressed: mouse => mark.drag(mouse.y)
        onPositionChanged: mouse => {
            if (pressed)
                mark.drag(mouse.y);
        }
    }
}
