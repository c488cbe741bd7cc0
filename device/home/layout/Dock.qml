import QtQuick
import DubrixControls
import DubrixHome

/// The strip at the bottom with the application's own icon, in sight from every page.
Rectangle {
    id: dock

    required property HomeScreen home

    height: Theme.points(104)
    radius: Theme.points(26)
    color: HomeTheme.glass
    border.width: 1
    border.color: HomeTheme.glassEdge

    Pressable {
        id: own

        anchors.centerIn: parent
        width: Theme.points(90)
        height: parent.height
        text: dock.home.ownName
        Accessible.description: qsTr("Starts the application")
        onTapped: dock.home.tapOwn()

        IconArt {
            anchors.horizontalCenter: parent.horizontalCenter
            y: Theme.points(11)
            source: dock.home.ownIcon
            name: dock.home.ownName
            pressed: own.pressed
            marked: own.activeFocus && KeyboardUse.active
            cell: own.width
        }
    }
}
