pragma ComponentBehavior: Bound

import QtQuick
import Dubrix
import DubrixControls

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
        id: tabs

        anchors.fill: parent
        controller: window.root
        // A screen that is on its way out still covers what is below.
        enabled: layers.count === 0 && !window.root.modals.suspended && !window.dimmed
    }

    Shortcut {
        sequences: ["Ctrl+Q", "Ctrl+W"]
        onActivated: window.close()
    }

    component TabKeys: Shortcut {
        enabled: tabs.enabled
    }

    TabKeys {
        sequence: "Ctrl+Tab"
        onActivated: tabs.turn(1)
    }

    TabKeys {
        sequence: "Ctrl+Shift+Tab"
        onActivated: tabs.turn(-1)
    }

    TabKeys {
        sequence: "Ctrl+F"
        onActivated: window.root.searchAsked()
    }

    TabKeys {
        sequence: "F1"
        onActivated: window.root.helpAsked()
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

    // What comes and goes above all else is made when the first frame has been drawn.
    Connections {
        target: window
        enabled: above.status === Loader.Null
        function onFrameSwapped() {
            above.setSource("AboveAll.qml", {
                drops: window.drops,
                stage: window.stage
            });
        }
    }

    Loader {
        id: above

        z: 900
        anchors.fill: parent
    }
}
