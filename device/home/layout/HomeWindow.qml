pragma ComponentBehavior: Bound

import QtQuick
import DubrixControls
import DubrixHome

/// The home screen's window: wallpaper, pages of icons, dock, and what comes over them.
Window {
    id: window

    required property HomeScreen home
    readonly property bool occupied: menu.shown || alert.shown

    width: Math.min(Theme.points(390), Screen.desktopAvailableWidth)
    height: Math.min(Theme.points(760), Screen.desktopAvailableHeight)
    minimumWidth: Theme.points(320)
    minimumHeight: Theme.points(420)
    title: qsTr("Home screen – Dubrix")
    color: HomeTheme.ground
    visible: true

    Shortcut {
        sequences: ["Ctrl+Q", "Ctrl+W"]
        onActivated: window.close()
    }

    Shortcut {
        sequence: "Ctrl+Z"
        enabled: !window.occupied
        onActivated: window.home.undo()
    }

    Image {
        anchors.fill: parent
        source: Theme.dark ? "image://wallpaper/dark" : "image://wallpaper/light"
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
                topMargin: Theme.points(20)
                bottomMargin: dock.height + dots.height + Theme.points(22)
            }
            focus: true
            home: window.home
            onMenuAsked: (icon, identifier, name) => menu.open(icon, identifier, name)
        }

        EmptyState {
            anchors.centerIn: pages
            width: Math.min(pages.width - 2 * Theme.margin, Theme.points(300))
            title: qsTr("No applications yet")
            message: qsTr("Drop an .ipa archive here to install it.")
            ink: HomeTheme.ink
            quietInk: HomeTheme.quietInk
            visible: window.home.applications.loaded && pages.count === 0
        }

        PageDots {
            id: dots

            anchors {
                bottom: dock.top
                bottomMargin: Theme.points(6)
                horizontalCenter: parent.horizontalCenter
            }
            width: parent.width - 2 * Theme.margin
            pageCount: pages.pageCount
            page: pages.page
            onTurned: page => pages.turnTo(page)
        }

        Dock {
            id: dock

            anchors {
                bottom: parent.bottom
                bottomMargin: Theme.points(12)
                horizontalCenter: parent.horizontalCenter
            }
            width: Math.min(parent.width - Theme.points(24), Theme.points(460))
            home: window.home
        }
    }

    Banner {
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(parent.width - Theme.points(24), Theme.points(420))
        line: dock.y - Theme.points(10)
        busy: window.home.errand !== ""
        words: window.home.errand || window.home.remark
        percent: window.home.percent
        action: busy || window.occupied ? "" : window.home.remarkAction
        stays: action !== ""
        onPassed: window.home.remarkPassed()
        onActed: window.home.undo()
        onFocusLost: if (!window.occupied)
            pages.forceActiveFocus()
    }

    DropZone {
        anchors.fill: parent
        enabled: !window.occupied
        takes: files => window.home.takes(files)
        onTaken: files => window.home.drop(files)
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
        onClosed: menu.shown ? menu.forceActiveFocus() : pages.forceActiveFocus()
    }
}
