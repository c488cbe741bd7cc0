import QtQuick
import Dubrix
import DubrixControls

/// One colour to pick. The one in use carries a check mark.
Pressable {
    id: swatch

    required property color color
    /// What the swatch stands on.
    required property color ground
    property bool marked: false

    Accessible.name: ColorWords.componentsOf(color)
    Accessible.description: ColorWords.nameOf(color) + (marked ? ", " + qsTr("current color") : "")
    Accessible.selectable: true
    Accessible.selected: marked

    Rectangle {
        anchors.fill: parent
        radius: Theme.points(10)
        color: swatch.color
        border.width: Theme.hairline
        border.color: Theme.swatchBorder
        scale: swatch.pressed ? 0.9 : 1

        Behavior on scale {
            NumberAnimation {
                duration: Theme.duration(90)
            }
        }
    }

    // A check mark: an upright corner, turned.
    Item {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -Theme.points(2)
        width: Theme.points(11)
        height: Theme.points(20)
        rotation: 45
        visible: swatch.marked

        Rectangle {
            anchors.right: parent.right
            width: Theme.points(3.5)
            height: parent.height
            radius: width / 2
            color: Theme.inkOn(swatch.color)
            antialiasing: true
        }

        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: Theme.points(3.5)
            radius: height / 2
            color: Theme.inkOn(swatch.color)
            antialiasing: true
        }
    }

    FocusRing {
        inset: -Theme.points(4)
        radius: Theme.points(13)
        border.width: 3
        border.color: Theme.isLight(swatch.ground) ? Theme.accentOnLight : Theme.accentOnDark
    }
}
