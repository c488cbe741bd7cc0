pragma ComponentBehavior: Bound

import QtQuick
import Dubrix
import DubrixControls

/// A navigation controller's screens, one over the other, under its bar. A pushed screen slides in
/// from the right.
FocusScope {
    id: view

    required property NavigationController controller

    focus: true

    NavigationBar {
        id: bar

        width: parent.width
        controller: view.controller
    }

    Item {
        anchors {
            top: bar.bottom
            left: parent.left
            right: parent.right
            bottom: parent.bottom
        }
        clip: true

        Repeater {
            id: screens

            model: view.controller.viewControllers.length
            delegate: ScreenLoader {
                required property int index
                readonly property bool topmost: index === screens.count - 1

                width: parent?.width ?? 0
                height: parent?.height ?? 0
                controller: view.controller.viewControllers[index] ?? null
                focus: topmost
                enabled: topmost
                visible: topmost
                Component.onCompleted: if (index > 0)
                    slide.start()

                NumberAnimation on x {
                    id: slide

                    running: false
                    from: view.width
                    to: 0
                    duration: Theme.duration(220)
                    easing.type: Easing.OutCubic
                }
            }
        }
    }
}
