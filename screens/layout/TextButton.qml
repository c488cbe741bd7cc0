import QtQuick

/// A button that is only its text.
Item {
    id: button

    required property string text
    property bool strong: true

    signal tapped

    implicitWidth: label.implicitWidth + Theme.points(16)
    implicitHeight: Theme.points(44)
    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.focusable: true
    Accessible.onPressAction: button.tapped()
    Keys.onSpacePressed: button.tapped()
    Keys.onReturnPressed: button.tapped()

    Text {
        id: label

        anchors.centerIn: parent
        text: button.text
        color: Theme.accent
        opacity: tap.pressed ? 0.5 : 1
        font.pixelSize: Theme.bodySize
        font.weight: button.strong ? Font.DemiBold : Font.Normal
        Accessible.ignored: true
    }

    FocusRing {
        target: button
        inset: Theme.points(4)
    }

    TapHandler {
        id: tap

        onTapped: button.tapped()
    }
}
