import QtQuick
import DubrixHome

/// One application on its page. It comes with a little leap, moves when its slot changes and shrinks
/// away when it leaves.
Item {
    id: icon

    required property string identifier
    required property string name
    required property url icon
    required property int slot
    required property bool leaving
    required property bool arriving
    required property int position
    required property HomeGrid grid
    readonly property bool isCurrent: !leaving && grid.current === position

    /// The slot's place, in cells.
    property real column: slot % grid.columns
    property real line: Math.floor(slot / grid.columns)

    signal gone

    function takeFocus() {
        if (isCurrent && KeyboardUse.active)
            forceActiveFocus();
    }
    function tapped() {
        bounce.restart();
        grid.home.tap(identifier);
    }
    function askMenu() {
        grid.current = position;
        grid.menuAsked(art, identifier, name);
    }

    x: grid.side + column * grid.cellWidth
    y: line * grid.cellHeight
    width: grid.cellWidth
    height: grid.cellHeight
    enabled: !leaving
    focus: isCurrent
    onIsCurrentChanged: takeFocus()
    onLeavingChanged: departure.start()
    Component.onCompleted: {
        takeFocus();
        if (arriving)
            arrival.start();
    }
    Accessible.role: Accessible.Button
    Accessible.name: name
    Accessible.description: identifier
    Accessible.focusable: true
    Accessible.onPressAction: if (icon.enabled && icon.visible) icon.tapped()
    Keys.onReturnPressed: icon.tapped()
    Keys.onEnterPressed: icon.tapped()
    Keys.onSpacePressed: icon.tapped()
    Keys.onDeletePressed: grid.home.remove(identifier)
    Keys.onMenuPressed: icon.askMenu()

    Behavior on column {
        NumberAnimation {
            duration: HomeTheme.duration(280)
            easing.type: Easing.OutCubic
        }
    }
    Behavior on line {
        NumberAnimation {
            duration: HomeTheme.duration(280)
            easing.type: Easing.OutCubic
        }
    }

    IconArt {
        id: art

        anchors.horizontalCenter: parent.horizontalCenter
        y: Math.max(HomeTheme.points(4), (parent.height - HomeTheme.points(84)) / 2)
        source: icon.icon
        name: icon.name
        pressed: tap.pressed
        marked: icon.activeFocus && KeyboardUse.active
        cell: icon.width
    }

    TapHandler {
        id: tap

        onTapped: icon.tapped()
        onLongPressed: icon.askMenu()
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: icon.askMenu()
    }

    SequentialAnimation {
        id: bounce

        NumberAnimation {
            target: art
            property: "lift"
            to: HomeTheme.still ? 0 : HomeTheme.points(10)
            duration: HomeTheme.duration(110)
            easing.type: Easing.OutQuad
        }
        NumberAnimation {
            target: art
            property: "lift"
            to: 0
            duration: HomeTheme.duration(420)
            easing.type: Easing.OutBounce
        }
    }
    NumberAnimation {
        id: arrival

        target: icon
        property: "scale"
        from: HomeTheme.still ? 1 : 0
        to: 1
        duration: HomeTheme.duration(420)
        easing.type: Easing.OutBack
    }
    SequentialAnimation {
        id: departure

        onFinished: icon.gone()

        NumberAnimation {
            target: icon
            properties: "scale,opacity"
            to: 0
            duration: HomeTheme.duration(220)
            easing.type: Easing.InCubic
        }
    }
}
