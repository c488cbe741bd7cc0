import QtQuick

/// A button that is only its text.
Pressable {
    id: button

    property bool strong: true
    /// Whether it leads back: with an arrow before the text.
    property bool backward: false

    implicitWidth: label.implicitWidth + Theme.points(16) + (backward ? Theme.points(14) : 0)
    implicitHeight: Theme.points(44)

    Text {
        id: label

        anchors {
            left: parent.left
            leftMargin: Theme.points(button.backward ? 22 : 8)
            right: parent.right
            rightMargin: Theme.points(8)
            verticalCenter: parent.verticalCenter
        }
        text: button.text
        elide: Text.ElideRight
        textFormat: Text.PlainText
        color: Theme.accent
        opacity: button.pressed ? 0.5 : 1
        font.pixelSize: Theme.bodySize
        font.weight: button.strong ? Font.DemiBold : Font.Normal
        Accessible.ignored: true
    }

    Chevron {
        anchors.verticalCenter: parent.verticalCenter
        x: Theme.points(6)
        visible: button.backward
        color: Theme.accent
        mirrored: true
    }

    FocusRing {
        inset: Theme.points(4)
    }
}
