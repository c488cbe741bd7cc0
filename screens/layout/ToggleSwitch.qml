import QtQuick

/// A switch. It shows `on` and asks for a change; whoever owns `on` makes it.
Item {
    id: toggle

    required property string name
    required property bool on

    signal changeRequested(bool on)

    implicitWidth: Theme.points(51)
    implicitHeight: Theme.points(31)
    activeFocusOnTab: true
    Accessible.role: Accessible.CheckBox
    Accessible.name: name
    Accessible.checkable: true
    Accessible.checked: on
    Accessible.focusable: true
    Accessible.onToggleAction: if (toggle.enabled && toggle.visible) toggle.changeRequested(!toggle.on)
    Accessible.onPressAction: if (toggle.enabled && toggle.visible) toggle.changeRequested(!toggle.on)
    Keys.onSpacePressed: toggle.changeRequested(!toggle.on)
    Keys.onReturnPressed: toggle.changeRequested(!toggle.on)

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: toggle.on ? Theme.accent : Theme.switchOff

        Behavior on color {
            ColorAnimation {
                duration: 160
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
                duration: 160
                easing.type: Easing.OutCubic
            }
        }
    }

    FocusRing {
        target: toggle
        inset: -Theme.points(3)
        radius: height / 2
    }

    TapHandler {
        gesturePolicy: TapHandler.WithinBounds
        onTapped: toggle.changeRequested(!toggle.on)
    }
}
