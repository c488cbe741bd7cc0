pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Dubrix
import DubrixControls

/// The colour picker's swatches in rows. The grid is one stop for the Tab key; the arrow keys, Home
/// and End lead through it.
FocusScope {
    id: view

    required property QZColorPickerViewController controller

    /// Whether the picker's sheet stands free in the window, with its corners to be seen.
    readonly property bool floating: width < Window.width
    readonly property real pointsWide: width / Theme.scale
    property int current: Math.max(controller.currentItem, 0)

    function moveTo(item: int) {
        if (item < 0 || item >= swatches.count)
            return;
        current = item;
        swatches.itemAt(item).forceActiveFocus();
        reveal(item);
    }
    function reveal(item: int) {
        const flow = controller.flowLayout;
        const swatch = swatches.itemAt(item);
        const top = grid.y + swatch.y - Theme.points(flow.topInset);
        const bottom = grid.y + swatch.y + swatch.height + Theme.points(flow.bottomInset);
        scroll.contentY = Math.max(Math.min(scroll.contentY, top), bottom - scroll.height, 0);
    }

    focus: true
    Keys.onLeftPressed: moveTo(current - 1)
    Keys.onRightPressed: moveTo(current + 1)
    Keys.onUpPressed: moveTo(current - grid.columns)
    Keys.onDownPressed: moveTo(current + grid.columns)
    Keys.onPressed: event => {
        if (event.key !== Qt.Key_Home && event.key !== Qt.Key_End)
            return;
        event.accepted = true;
        moveTo(event.key === Qt.Key_Home ? 0 : swatches.count - 1);
    }

    // Its upper corners lie above the view, which the sheet's bar hides.
    Rectangle {
        y: -Theme.sheetRadius
        width: parent.width
        height: parent.height + Theme.sheetRadius
        radius: view.floating ? Theme.sheetRadius : 0
        color: view.controller.backgroundColor
    }

    Flickable {
        id: scroll

        anchors.fill: parent
        contentWidth: width
        contentHeight: grid.y + grid.height + Theme.points(view.controller.flowLayout.bottomInset)
        boundsBehavior: Flickable.DragOverBounds
        T.ScrollBar.vertical: ScrollMark {
            color: Theme.inkOn(view.controller.backgroundColor)
        }
        Accessible.role: Accessible.Pane
        Accessible.name: qsTr("Colors")

        Grid {
            id: grid

            readonly property real side: Theme.points(view.controller.flowLayout.itemSize.width)

            // Whole pixels, so that every swatch has sharp edges.
            x: Math.round((scroll.width - width) / 2)
            y: Math.round(Theme.points(view.controller.flowLayout.topInset))
            columns: view.controller.flowLayout.columnsIn(view.pointsWide)
            columnSpacing: Math.floor(Theme.points(
                view.controller.flowLayout.interitemSpacingIn(view.pointsWide)))
            rowSpacing: Math.round(Theme.points(view.controller.flowLayout.minimumLineSpacing))

            Repeater {
                id: swatches

                model: view.controller.collectionViewNumberOfItemsInSection(0)
                delegate: ColorSwatch {
                    required property int index

                    width: grid.side
                    height: grid.side
                    color: view.controller.collectionViewCellForItemAtIndexPath(0, index)
                           .backgroundColor
                    ground: view.controller.backgroundColor
                    marked: index === view.controller.currentItem
                    focus: index === view.current
                    activeFocusOnTab: index === view.current
                    onTapped: view.controller.collectionViewDidSelectItemAtIndexPath(0, index)
                }
            }
        }
    }

    // Shows the swatch in use with what comes after it, once the grid has its places.
    Timer {
        interval: 0
        running: true
        onTriggered: {
            view.reveal(Math.min(view.current + 2 * grid.columns, swatches.count - 1));
            view.reveal(view.current);
        }
    }
}
