import QtQuick

/// One row of a section: a title, what stands at its right, a hairline below. `rowHeight` is in
/// points; a row of height 0 is gone.
Item {
    id: row

    required property string title
    required property real rowHeight
    property string value
    property bool selectable: false
    property bool selected: false
    property bool disclosure: false
    property bool action: false
    property bool last: false
    property bool titleShown: true
    default property alias accessory: accessoryArea.data

    signal tapped

    readonly property bool shown: rowHeight > 0
    readonly property bool pressed: selectable && (tap.pressed || selected)

    width: parent?.width ?? 0
    height: Theme.points(rowHeight)
    visible: height > 0
    clip: true
    activeFocusOnTab: selectable && shown
    Accessible.role: selectable ? Accessible.Button : Accessible.StaticText
    Accessible.name: title
    Accessible.description: value
    Accessible.focusable: selectable
    Accessible.ignored: !shown
    Accessible.onPressAction: if (row.enabled && row.visible) row.tapped()
    Keys.onSpacePressed: if (selectable) row.tapped()
    Keys.onReturnPressed: if (selectable) row.tapped()

    Behavior on height {
        NumberAnimation {
            duration: 180
            easing.type: Easing.InOutQuad
        }
    }

    Rectangle {
        anchors.fill: parent
        color: row.pressed ? Theme.cardPressed : "transparent"
        radius: Theme.cardRadius
    }

    FocusRing {
        target: row
        inset: 2
    }

    Text {
        id: titleText

        anchors {
            left: parent.left
            leftMargin: Theme.margin
            verticalCenter: parent.verticalCenter
        }
        width: Math.min(implicitWidth, parent.width - 2 * Theme.margin)
        text: row.title
        visible: row.titleShown
        color: row.action ? Theme.accent : Theme.text
        font.pixelSize: Theme.bodySize
        font.weight: row.action ? Font.Medium : Font.Normal
        elide: Text.ElideRight
        textFormat: Text.PlainText
        Accessible.ignored: true
    }

    Text {
        anchors {
            left: titleText.right
            leftMargin: Theme.points(12)
            right: chevron.visible ? chevron.left : parent.right
            rightMargin: chevron.visible ? Theme.points(8) : Theme.margin
            verticalCenter: parent.verticalCenter
        }
        text: row.value
        color: Theme.secondaryText
        font.pixelSize: Theme.bodySize
        horizontalAlignment: Text.AlignRight
        elide: Text.ElideMiddle
        textFormat: Text.PlainText
        Accessible.ignored: true
    }

    Chevron {
        id: chevron

        anchors {
            right: parent.right
            rightMargin: Theme.margin
            verticalCenter: parent.verticalCenter
        }
        visible: row.disclosure
    }

    Item {
        id: accessoryArea

        anchors.fill: parent
    }

    Rectangle {
        anchors {
            left: parent.left
            leftMargin: Theme.margin
            right: parent.right
            bottom: parent.bottom
        }
        height: Theme.hairline
        color: Theme.separator
        visible: !row.last
    }

    TapHandler {
        id: tap

        enabled: row.shown
        onTapped: row.tapped()
    }
}
