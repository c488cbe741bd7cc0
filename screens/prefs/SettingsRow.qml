import QtQuick
import DubrixControls

/// One row of a section: a title and what stands at its right. `rowHeight` is in points; a row of
/// height 0 is gone.
ListRow {
    id: row

    required property string title
    required property real rowHeight
    property string value
    property bool disclosure: false
    property bool action: false
    property bool titleShown: true
    /// Leaves the row's place empty.
    property bool hidden: false

    readonly property bool shown: rowHeight > 0 && !hidden

    width: parent?.width ?? 0
    height: Theme.points(rowHeight)
    visible: height > 0
    enabled: shown
    opacity: hidden ? 0 : 1
    clip: true
    activeFocusOnTab: selectable && shown
    Accessible.role: selectable ? Accessible.Button : Accessible.StaticText
    Accessible.name: title
    Accessible.description: value
    Accessible.focusable: selectable
    Accessible.ignored: !shown

    Behavior on height {
        NumberAnimation {
            duration: Theme.duration(180)
            easing.type: Easing.InOutQuad
        }
    }

    Rectangle {
        anchors.fill: parent
        color: row.lit ? Theme.cardPressed : "transparent"
        radius: Theme.cardRadius
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
}
