import QtQuick

/// One choice of an alert or a menu, with the hairline that parts it from the one before.
Pressable {
    id: button

    property bool strong: false
    property bool dangerous: false
    property bool lineAbove: false
    property bool lineLeft: false

    implicitHeight: Theme.points(46)

    Rectangle {
        anchors.fill: parent
        anchors.margins: Theme.hairline
        radius: Theme.points(13)
        color: button.pressed ? Theme.alertPressed : "transparent"
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
        inset: Theme.points(5)
    }

    Text {
        anchors.centerIn: parent
        width: Math.min(implicitWidth, parent.width - Theme.points(20))
        text: button.text
        color: button.dangerous ? Theme.danger : Theme.accent
        font.pixelSize: Theme.bodySize
        font.weight: button.strong ? Font.DemiBold : Font.Normal
        elide: Text.ElideMiddle
        textFormat: Text.PlainText
        Accessible.ignored: true
    }
}
