import QtQuick

/// One row of a card, with a hairline that parts it from the next. It lights up while it is pressed
/// or selected.
Pressable {
    id: row

    property bool selectable: true
    property bool selected: false
    property bool last: false
    /// Where the hairline begins.
    property real lineStart: Theme.margin

    readonly property bool lit: selectable && (pressed || selected)

    activeFocusOnTab: selectable

    FocusRing {
        inset: 2
    }

    Rectangle {
        anchors {
            left: parent.left
            leftMargin: row.lineStart
            right: parent.right
            bottom: parent.bottom
        }
        z: 1
        height: Theme.hairline
        color: Theme.separator
        visible: !row.last
    }
}
