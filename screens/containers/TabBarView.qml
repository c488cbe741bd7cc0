pragma ComponentBehavior: Bound

import QtQuick
import Dubrix
import DubrixControls

/// The selected tab's screen with the tab bar below it. A screen is drawn from its first selection
/// on.
LayerScope {
    id: view

    required property TabBarController controller

    /// To the tab that is `by` further on, round the end.
    function turn(by: int) {
        const count = controller.items.length;
        controller.selectedIndex = (controller.selectedIndex + by + count) % count;
    }

    focus: true
    Accessible.role: Accessible.LayeredPane
    // Back to where the keyboard was before a modal screen took it.
    onEnabledChanged: if (enabled)
        forceActiveFocus()

    Repeater {
        model: view.controller.viewControllers
        delegate: ScreenLoader {
            required property int index
            required property ViewController modelData
            readonly property bool selected: index === view.controller.selectedIndex

            anchors {
                left: parent?.left
                right: parent?.right
                top: parent?.top
                bottom: parent?.bottom
                bottomMargin: bar.visible ? bar.height : 0
            }
            controller: modelData
            wanted: selected
            visible: selected
            focus: selected
        }
    }

    TabBar {
        id: bar

        anchors {
            left: parent.left
            right: parent.right
            bottom: parent.bottom
        }
        controller: view.controller
        visible: !view.controller.tabBarHidden
    }
}
