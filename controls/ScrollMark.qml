import QtQuick
import QtQuick.Templates as T

/// Shows which part of a list is seen, more clearly while it moves or the pointer is near; it can be
/// dragged.
T.ScrollBar {
    id: mark

    property color color: Theme.secondaryText

    implicitWidth: Theme.points(14)
    rightPadding: Theme.points(4)
    leftPadding: Theme.points(hovered || pressed ? 4 : 6)
    minimumSize: Math.min(1, Theme.points(36) / height)
    visible: size < 1
    Accessible.ignored: true

    contentItem: Rectangle {
        radius: width / 2
        color: mark.color
        opacity: mark.active ? 0.75 : 0.3

        Behavior on opacity {
            NumberAnimation {
                duration: Theme.duration(220)
            }
        }
    }
}
