pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Window
import Dubrix

/// The application window: the root screen, the modal screens over it, the status overlay over all.
Window {
    id: window

    required property TabBarController root
    required property QuickOverlayStage stage
    /// Takes the archives that are dropped here; null where nobody can install them.
    property ArchiveDrop drops: null
    readonly property bool dimmed: stage.background.shown

    width: Math.min(Theme.points(390), Screen.desktopAvailableWidth)
    height: Math.min(Theme.points(760), Screen.desktopAvailableHeight)
    minimumWidth: Theme.points(300)
    minimumHeight: Theme.points(360)
    title: "Dubrix"
    color: Theme.ground
    visible: true

    TabBarView {
        anchors.fill: parent
        controller: window.root
        enabled: !window.root.modals.occupied && !window.root.modals.suspended && !window.dimmed
    }

    Repeater {
        id: layers

        model: window.root.modals
        delegate: ModalLayer {
            required property int index
            required property var model
            anchors.fill: parent
            z: 10 + index
            controller: model.controller
            dismissing: model.dismissing
            animated: model.animated
            transitionTime: window.root.modals.transitionTime
            topmost: index === layers.count - 1
            covered: window.dimmed
        }
    }

    DropBanner {
        z: 900
        anchors {
            bottom: parent.bottom
            bottomMargin: Theme.points(70)
            horizontalCenter: parent.horizontalCenter
        }
        width: Math.min(parent.width - 2 * Theme.margin, Theme.points(420))
        drops: window.drops
    }

    DropArea {
        anchors.fill: parent
        enabled: window.drops !== null
        onEntered: drag => drag.accepted = window.drops.takes(drag.urls)
        onDropped: drop => {
            drop.accept(Qt.CopyAction);
            window.drops.drop(drop.urls);
        }
    }

    StatusOverlay {
        z: 1000
        anchors.fill: parent
        stage: window.stage
    }
}
