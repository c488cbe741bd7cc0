import QtQuick

/// One button of an alert, with the hairline that parts it from the one before.
Item {
    id: button

    required property string text
    property bool strong: false
    property bool lineAbove: false
    property bool lineLeft: false

    signal tapped

    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.focusable: true
    Accessible.onPressAction: if (button.enabled && button.visible) button.tapped()
    Keys.onSpacePressed: button.tapped()
    Keys.onReturnPressed: button.tapped()
    Keys.onEnterPressed: button.tapped()

    Rectangle {
        anchors.fill: parent
        anchors.margins: Theme.hairline
        radius: Theme.points(13)
        color: tap.pressed ? Theme.alertPressed : "transparent"
    }

    Rectangle {
        width: parent.width
        height: Theme.hairline
        color: Theme.separator
        visible: button.lineAbove
    }

    Rectangle {
        width: Theme.hairline
        height: parent.height
        color: Theme.separator
        visible: button.lineLeft
    }

    FocusRing {
        target: button
        inset: Theme.points(5)
    }

    Text {
        anchors.centerIn: parent
        width: Math.min(implicitWidth, parent.width - Theme.points(20))
        text: button.text
        color: Theme.accent
        font.pixelSize: Theme.bodySize
        font.weight: button.strong ? Font.DemiBold : Font.Normal
        elide: Text.ElideMiddle
        textFormat: Text.PlainText
        Accessible.ignored: true
    }

    TapHandler {
        id: tap

        onTapped: button.tapped()
    }
}
