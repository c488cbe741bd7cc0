import QtQuick
import DubrixHome

/// Shows that what is held over the window can be dropped.
Rectangle {
    id: mark

    required property bool shown

    color: HomeTheme.dim
    opacity: shown ? 1 : 0
    visible: opacity > 0

    Behavior on opacity {
        NumberAnimation {
            duration: HomeTheme.duration(120)
        }
    }

    Rectangle {
        anchors.fill: parent
        anchors.margins: HomeTheme.points(14)
        radius: HomeTheme.points(28)
        color: "transparent"
        border.width: HomeTheme.points(3)
        border.color: "#ffffff"

        Text {
            anchors.centerIn: parent
            text: qsTr("Drop to install")
            color: "#ffffff"
            font.pixelSize: HomeTheme.points(22)
            font.weight: Font.DemiBold
        }
    }
}
