pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Window
import Dubrix

/// The application window: the root screen, the modal screens over it, the status overlay over all.
Window {
    id: window

    required property TabBarController root
    required property QuickOverlayStage stage

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
        enabled: !window.root.modals.occupied
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
        }
    }

    StatusOverlay {
        z: 1000
        anchors.fill: parent
        stage: window.stage
    }
}
