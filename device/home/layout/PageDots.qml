pragma ComponentBehavior: Bound

import QtQuick
import DubrixHome

/// Which page is in sight: a dot for each page, or its number where there are too many for that.
Item {
    id: dots

    required property int pageCount
    required property int page
    readonly property bool fit: pageCount * HomeTheme.points(18) <= width

    signal turned(int page)

    height: HomeTheme.points(24)
    visible: pageCount > 1

    Row {
        anchors.centerIn: parent
        visible: dots.fit

        Repeater {
            model: dots.fit ? dots.pageCount : 0
            delegate: Item {
                id: dot

                required property int index

                width: HomeTheme.points(18)
                height: dots.height
                Accessible.role: Accessible.PageTab
                Accessible.name: qsTr("Page %1").arg(index + 1)
                Accessible.selected: index === dots.page
                Accessible.onPressAction: if (enabled && visible) dots.turned(index)

                Rectangle {
                    anchors.centerIn: parent
                    width: HomeTheme.points(7.5)
                    height: width
                    radius: width / 2
                    color: HomeTheme.ink
                    opacity: dot.index === dots.page ? 1 : 0.3
                }
                TapHandler {
                    onTapped: dots.turned(dot.index)
                }
            }
        }
    }

    Row {
        anchors.centerIn: parent
        visible: !dots.fit
        spacing: HomeTheme.points(8)

        TurnButton {
            text: "‹"
            name: qsTr("Previous page")
            enabled: dots.page > 0
            height: dots.height
            onTapped: dots.turned(dots.page - 1)
        }
        Text {
            height: dots.height
            text: qsTr("Page %1 of %2").arg(dots.page + 1).arg(dots.pageCount)
            color: HomeTheme.ink
            font.pixelSize: HomeTheme.noteSize
            verticalAlignment: Text.AlignVCenter
        }
        TurnButton {
            text: "›"
            name: qsTr("Next page")
            enabled: dots.page < dots.pageCount - 1
            height: dots.height
            onTapped: dots.turned(dots.page + 1)
        }
    }
}
