pragma ComponentBehavior: Bound

import QtQuick
import DubrixControls
import DubrixHome

/// The pages of icons, one beside the other. Only the page in sight and its neighbours are there.
FocusScope {
    id: pager

    required property HomeScreen home
    readonly property int count: home.applications.count

    readonly property int pageCount: grid.capacity > 0 ? Math.max(1, Math.ceil(count / grid.capacity)) : 1
    readonly property int page: list.currentIndex
    signal menuAsked(Item icon, string identifier, string name)

    function turnTo(wanted: int) {
        list.currentIndex = Math.max(0, Math.min(wanted, pageCount - 1));
    }
    function showIcon(position: int) {
        grid.current = position;
        turnTo(Math.floor(position / Math.max(1, grid.capacity)));
    }
    function keyPressed(event: KeyEvent) {
        const position = home.walk(event.key, grid.current, count, grid.columns, grid.rows);
        event.accepted = position >= 0;
        if (position >= 0)
            showIcon(position);
    }

    activeFocusOnTab: true
    onPageCountChanged: pageList.fit()
    onCountChanged: grid.current = Math.max(0, Math.min(grid.current, count - 1))
    onPageChanged: {
        if (grid.capacity > 0 && Math.floor(grid.current / grid.capacity) !== page)
            grid.current = Math.min(page * grid.capacity, Math.max(0, count - 1));
    }
    onWidthChanged: list.positionViewAtIndex(list.currentIndex, ListView.Beginning)
    Component.onCompleted: pageList.fit()
    Keys.onPressed: event => pager.keyPressed(event)

    HomeGrid {
        id: grid

        home: pager.home
        area: Qt.size(pager.width, pager.height)
        entered: pager.activeFocus
        onMenuAsked: (icon, identifier, name) => pager.menuAsked(icon, identifier, name)
    }

    Connections {
        target: pager.home.applications

        function onArrived(identifiers) {
            if (!list.moving && pager.enabled)
                pager.showIcon(Math.max(0, pager.home.applications.positionOf(identifiers[0])));
        }
    }

    ListModel {
        id: pageList

        function fit() {
            while (count < pager.pageCount)
                append({});
            if (count > pager.pageCount)
                remove(pager.pageCount, count - pager.pageCount);
        }
    }

    ListView {
        id: list

        anchors.fill: parent
        orientation: ListView.Horizontal
        snapMode: ListView.SnapOneItem
        highlightRangeMode: ListView.StrictlyEnforceRange
        preferredHighlightBegin: 0
        preferredHighlightEnd: 0
        highlightMoveDuration: Theme.duration(280)
        highlightMoveVelocity: -1
        flickDeceleration: 5000
        cacheBuffer: width
        keyNavigationEnabled: false
        model: pageList
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Applications, page %1 of %2").arg(pager.page + 1).arg(pager.pageCount)
        delegate: IconPage {
            required property int index

            width: list.width
            height: list.height
            number: index
            grid: grid
        }
    }

    WheelHandler {
        property real turned: 0

        acceptedDevices: PointerDevice.Mouse
        orientation: Qt.Vertical
        onWheel: event => {
            turned += event.angleDelta.y;
            if (Math.abs(turned) < 120)
                return;
            pager.turnTo(pager.page - Math.sign(turned));
            turned = 0;
        }
    }
}
