import QtQuick
import DubrixControls
import DubrixHome

/// One application on its page. It comes with a little leap, moves when its slot changes and shrinks
/// away when it leaves.
Pressable {
    id: icon

    required property string identifier
    required property string name
    required property url picture
    required property int slot
    required property bool leaving
    required property bool arriving
    required property int position
    required property HomeGrid grid
    readonly property bool isCurrent: !leaving && grid.current === position
    readonly property bool entered: grid.entered && KeyboardUse.active

    /// The slot's place, in cells.
    property real column: slot % grid.columns
    property real line: Math.floor(slot / grid.columns)

    signal gone

    function takeFocus() {
        if (isCurrent && entered)
            forceActiveFocus();
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
    activeFocusOnTab: false
    onIsCurrentChanged: takeFocus()
    onEnteredChanged: takeFocus()
    onLeavingChanged: departure.start()
    Component.onCompleted: {
        takeFocus();
        if (arriving)
            arrival.start();
    }
    holdable: true
    onHeld: icon.askMenu()
    onTapped: {
        bounce.restart();
        grid.home.tap(identifier);
    }
    Accessible.name: name
    Accessible.description: identifier
    Keys.onDeletePressed: grid.home.remove(identifier)
    Keys.onMenuPressed: icon.askMenu()

    Behavior on column {
        NumberAnimation {
            duration: Theme.duration(280)
            easing.type: Easing.OutCubic
        }
    }
    Behavior on line {
        NumberAnimation {
            duration: Theme.duration(280)
            easing.type: Easing.OutCubic
        }
    }

    IconArt {
        id: art

        anchors.horizontalCenter: parent.horizontalCenter
        y: Math.max(Theme.points(4), (parent.height - Theme.points(84)) / 2)
        source: icon.picture
        name: icon.name
        pressed: icon.pressed
        marked: icon.activeFocus && KeyboardUse.active
        cell: icon.width
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
            to: Theme.still ? 0 : Theme.points(10)
            duration: Theme.duration(110)
            easing.type: Easing.OutQuad
        }
        NumberAnimation {
            target: art
            property: "lift"
            to: 0
            duration: Theme.duration(420)
            easing.type: Easing.OutBounce
        }
    }
    NumberAnimation {
        id: arrival

        target: icon
        property: "scale"
        from: Theme.still ? 1 : 0
        to: 1
        duration: Theme.duration(420)
        easing.type: Easing.OutBack
    }
    SequentialAnimation {
        id: departure

        onFinished: icon.gone()

        NumberAnimation {
            target: icon
            properties: "scale,opacity"
            to: 0
            duration: Theme.duration(220)
            easing.type: Easing.InCubic
        }
    }
}
