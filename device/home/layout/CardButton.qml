import QtQuick
import DubrixHome

/// One choice of a menu or an alert.
Item {
    id: button

    required property string text
    property bool dangerous: false
    property bool strong: false
    property bool lineAbove: false
    property bool lineLeft: false

    signal tapped

    height: HomeTheme.points(46)
    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.focusable: true
    Accessible.onPressAction: if (button.enabled && button.visible) button.tapped()
    Keys.onReturnPressed: button.tapped()
    Keys.onEnterPressed: button.tapped()
    Keys.onSpacePressed: button.tapped()

    Rectangle {
        anchors.fill: parent
        anchors.margins: HomeTheme.points(3)
        radius: HomeTheme.points(12)
        color: tap.pressed ? HomeTheme.cardPressed : "transparent"
        border.width: button.activeFocus && KeyboardUse.active ? HomeTheme.points(2) : 0
        border.color: HomeTheme.accent
    }
    Rectangle {
        width: parent.width
        height: 1
        color: HomeTheme.separator
        visible: button.lineAbove
    }
    Rectangle {
        width: 1
        height: parent.height
        color: HomeTheme.separator
        visible: button.lineLeft
    }
    Text {
        anchors.centerIn: parent
        text: button.text
        color: button.dangerous ? HomeTheme.danger : HomeTheme.accent
        font.pixelSize: HomeTheme.titleSize
        font.weight: button.strong ? Font.DemiBold : Font.Normal
        Accessible.ignored: true
    }
    TapHandler {
        id: tap

        onTapped: button.tapped()
    }
}
