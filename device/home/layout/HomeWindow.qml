pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Window
import DubrixHome

/// The home screen's window: wallpaper, pages of icons, dock, and what comes over them.
Window {
    id: window

    required property HomeScreen home
    readonly property bool occupied: menu.shown || alert.shown

    width: Math.min(HomeTheme.points(390), Screen.desktopAvailableWidth)
    height: Math.min(HomeTheme.points(760), Screen.desktopAvailableHeight)
    minimumWidth: HomeTheme.points(320)
    minimumHeight: HomeTheme.points(420)
    title: qsTr("Home screen – Dubrix")
    color: HomeTheme.ground
    visible: true
    Component.onCompleted: HomeTheme.still = window.home.reducedMotion

    Image {
        anchors.fill: parent
        source: HomeTheme.dark ? "image://wallpaper/dark" : "image://wallpaper/light"
        fillMode: Image.PreserveAspectCrop
        asynchronous: true
        Accessible.ignored: true
    }

    LayerScope {
        anchors.fill: parent
        focus: true
        enabled: !window.occupied
        Accessible.role: Accessible.LayeredPane

        PagedIcons {
            id: pages

            anchors {
                fill: parent
                topMargin: HomeTheme.points(20)
                bottomMargin: dock.height + dots.height + HomeTheme.points(22)
            }
            focus: true
            home: window.home
            onMenuAsked: (icon, identifier, name) => menu.open(icon, identifier, name)
        }

        EmptyHome {
            anchors.centerIn: pages
            width: Math.min(pages.width - 2 * HomeTheme.margin, HomeTheme.points(300))
            visible: window.home.applications.loaded && pages.count === 0
        }

        PageDots {
            id: dots

            anchors {
                bottom: dock.top
                bottomMargin: HomeTheme.points(6)
                horizontalCenter: parent.horizontalCenter
            }
            width: parent.width - 2 * HomeTheme.margin
            pageCount: pages.pageCount
            page: pages.page
            onTurned: page => pages.turnTo(page)
        }

        Dock {
            id: dock

            anchors {
                bottom: parent.bottom
                bottomMargin: HomeTheme.points(12)
                horizontalCenter: parent.horizontalCenter
            }
            width: Math.min(parent.width - HomeTheme.points(24), HomeTheme.points(460))
            home: window.home
        }
    }

    Banner {
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(parent.width - HomeTheme.points(24), HomeTheme.points(420))
        line: dock.y - HomeTheme.points(10)
        home: window.home
    }

    DropMark {
        id: dropMark

        anchors.fill: parent
        shown: drops.containsDrag
    }

    DropArea {
        id: drops

        anchors.fill: parent
        enabled: !window.occupied
        onEntered: drag => drag.accepted = window.home.takes(drag.urls)
        onDropped: drop => {
            drop.accept(Qt.CopyAction);
            window.home.drop(drop.urls);
        }
    }

    ActionMenu {
        id: menu

        anchors.fill: parent
        home: window.home
        // A failure may be told while it is open.
        enabled: shown && !alert.shown
        onClosed: pages.forceActiveFocus()
    }

    HomeAlert {
        id: alert

        anchors.fill: parent
        home: window.home
        onClosed: (menu.shown ? menu : pages).forceActiveFocus()
    }
}
