import QtQuick
import DubrixHome

/// The strip at the bottom with the application's own icon, in sight from every page.
Rectangle {
    id: dock

    required property HomeScreen home

    height: HomeTheme.points(104)
    radius: HomeTheme.points(26)
    color: HomeTheme.glass
    border.width: 1
    border.color: HomeTheme.glassEdge

    Item {
        id: own

        anchors.centerIn: parent
        width: HomeTheme.points(90)
        height: parent.height
        activeFocusOnTab: true
        Accessible.role: Accessible.Button
        Accessible.name: dock.home.ownName
        Accessible.description: qsTr("Starts the application")
        Accessible.focusable: true
        Accessible.onPressAction: if (enabled && visible) dock.home.tapOwn()
        Keys.onReturnPressed: dock.home.tapOwn()
        Keys.onEnterPressed: dock.home.tapOwn()
        Keys.onSpacePressed: dock.home.tapOwn()

        IconArt {
            anchors.horizontalCenter: parent.horizontalCenter
            y: HomeTheme.points(11)
            source: dock.home.ownIcon
            name: dock.home.ownName
            pressed: tap.pressed
            marked: own.activeFocus && KeyboardUse.active
            cell: own.width
        }

        TapHandler {
            id: tap

            onTapped: dock.home.tapOwn()
        }
    }
}
