pragma ComponentBehavior: Bound

import QtQuick
import DubrixControls
import DubrixHome

/// Which page is in sight: a dot for each page, or its number where there are too many for that.
Item {
    id: dots

    required property int pageCount
    required property int page
    readonly property bool fit: pageCount * Theme.points(18) <= width

    signal turned(int page)

    height: Theme.points(24)
    visible: pageCount > 1

    component TurnButton: Pressable {
        id: turn

        property bool backward: false

        width: Theme.points(34)
        height: dots.height
        activeFocusOnTab: false
        opacity: enabled ? (pressed ? 0.5 : 1) : 0.3

        Chevron {
            anchors.centerIn: parent
            color: HomeTheme.ink
            mirrored: turn.backward
        }
    }

    Row {
        anchors.centerIn: parent
        visible: dots.fit

        Repeater {
            model: dots.fit ? dots.pageCount : 0
            delegate: Pressable {
                id: dot

                required property int index

                width: Theme.points(18)
                height: dots.height
                activeFocusOnTab: false
                text: qsTr("Page %1").arg(index + 1)
                Accessible.role: Accessible.PageTab
                Accessible.selected: index === dots.page
                onTapped: dots.turned(index)

                Rectangle {
                    anchors.centerIn: parent
                    width: Theme.points(7.5)
                    height: width
                    radius: width / 2
                    color: HomeTheme.ink
                    opacity: dot.index === dots.page ? 1 : 0.3
                }
            }
        }
    }

    Row {
        anchors.centerIn: parent
        visible: !dots.fit
        spacing: Theme.points(8)

        TurnButton {
            text: qsTr("Previous page")
            backward: true
            enabled: dots.page > 0
            onTapped: dots.turned(dots.page - 1)
        }
        Text {
            height: dots.height
            text: qsTr("Page %1 of %2").arg(dots.page + 1).arg(dots.pageCount)
            color: HomeTheme.ink
            font.pixelSize: Theme.noteSize
            verticalAlignment: Text.AlignVCenter
        }
        TurnButton {
            text: qsTr("Next page")
            enabled: dots.page < dots.pageCount - 1
            onTapped: dots.turned(dots.page + 1)
        }
    }
}
