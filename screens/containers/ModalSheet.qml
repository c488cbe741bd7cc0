import QtQuick
import Dubrix
import DubrixControls

/// A modal screen on a sheet that slides in from below: over the whole width of a narrow window, in
/// the middle of a wide one. Escape, or dragging it down by its bar, sends it away.
FocusScope {
    id: view

    required property ViewController controller
    required property ModalLayer modalLayer

    readonly property bool wide: width > Theme.points(620)

    focus: true
    Keys.onEscapePressed: controller.dismissBySystem()

    Shade {
        anchors.fill: parent
        opacity: view.modalLayer.presence
    }

    Rectangle {
        id: sheet

        property real dragged: 0
        readonly property real gap: view.wide ? Math.max(Theme.points(24), parent.height * 0.08)
                                              : Theme.points(12)

        x: (parent.width - width) / 2
        y: gap + dragged + (parent.height - gap) * (1 - view.modalLayer.presence)
        width: view.wide ? Theme.points(560) : parent.width
        height: view.wide ? parent.height - 2 * gap : parent.height - gap + radius
        radius: Theme.sheetRadius
        color: Theme.ground
        border.width: Theme.dark ? Theme.hairline : 0
        border.color: Theme.separator

        Behavior on dragged {
            enabled: !drag.active
            NumberAnimation {
                duration: Theme.duration(180)
                easing.type: Easing.OutCubic
            }
        }

        Item {
            width: parent.width
            height: Theme.points(52)

            Rectangle {
                anchors.horizontalCenter: parent.horizontalCenter
                y: Theme.points(5)
                width: Theme.points(36)
                height: Theme.points(4)
                radius: height / 2
                color: Theme.separator
            }

            DragHandler {
                id: drag

                target: null
                xAxis.enabled: false
                onTranslationChanged: if (active)
                    sheet.dragged = Math.max(0, translation.y)
                onActiveChanged: if (!active) {
                    if (sheet.dragged > Theme.points(120))
                        view.controller.dismissBySystem();
                    else
                        sheet.dragged = 0;
                }
            }
        }

        ScreenLoader {
            anchors.fill: parent
            anchors.bottomMargin: view.wide ? 0 : sheet.radius
            focus: true
            controller: view.controller
        }
    }
}
