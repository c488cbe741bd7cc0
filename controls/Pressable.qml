import QtQuick

/// What can be pressed: by a finger or pointer, by Space, Return or Enter where the keyboard is, by a
/// screen reader. All of them come out as `tapped`. A key that is held down presses once, on whatever
/// it is held; what is disabled or not shown is not pressed by any means.
Item {
    id: pressable

    /// What it is called.
    property string text
    /// Whether a finger or pointer that stays on it is something else than a tap: `held`.
    property bool holdable: false
    readonly property bool pressed: area.containsPress

    signal tapped
    signal held

    function press() {
        if (enabled && visible)
            tapped();
    }

    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.focusable: true
    Accessible.onPressAction: press()
    Keys.onPressed: event => {
        event.accepted = activeFocus
                         && [Qt.Key_Space, Qt.Key_Return, Qt.Key_Enter].includes(event.key);
        if (event.accepted && !event.isAutoRepeat)
            press();
    }

    // Takes the press for itself, so that nothing below is pressed along with it.
    MouseArea {
        id: area

        anchors.fill: parent
        onPressAndHold: mouse => {
            mouse.accepted = pressable.holdable;
            if (pressable.holdable)
                pressable.held();
        }
        onClicked: pressable.press()
    }
}
