import QtQuick

/// A switch. It shows `on` and asks for a change; whoever owns `on` makes it.
Pressable {
    id: toggle

    required property bool on

    signal changeRequested(bool on)

    implicitWidth: Theme.points(51)
    implicitHeight: Theme.points(31)
    Accessible.role: Accessible.CheckBox
    Accessible.checkable: true
    Accessible.checked: on
    Accessible.onToggleAction: toggle.press()
    onTapped: changeRequested(!on)

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: toggle.on ? Theme.accent : Theme.switchOff

        Behavior on color {
            ColorAnimation {
                duration: Theme.duration(160)
            }
        }
    }

    Rectangle {
        readonly property real gap: Theme.points(2)

        x: toggle.on ? parent.width - width - gap : gap
        y: gap
        width: parent.height - 2 * gap
        height: width
        radius: height / 2
        color: "#ffffff"
        border.width: toggle.on ? 0 : 1
        border.color: "#14000000"

        Behavior on x {
            NumberAnimation {
                duration: Theme.duration(160)
                easing.type: Easing.OutCubic
            }
        }
    }

    FocusRing {
        inset: -Theme.points(3)
        radius: height / 2
    }
}
