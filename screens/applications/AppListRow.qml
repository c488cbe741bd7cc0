import QtQuick
import DubrixControls

/// One application of the picker's list: icon, name, check mark. Rows of a section form one card.
ListRow {
    id: cell

    required property int section
    required property int row
    required property string name
    required property string detail
    required property string picture
    required property int iconSize
    required property bool checked
    required last

    readonly property bool first: row === 0
    readonly property color ground: lit ? Theme.cardPressed : Theme.card

    height: Math.round(Theme.points(44))
    activeFocusOnTab: false
    lineStart: place.x + place.width + Theme.points(12)
    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.description: detail
    Accessible.selectable: true
    Accessible.selected: checked
    Accessible.checkable: true
    Accessible.checked: checked

    Rectangle {
        anchors.fill: parent
        radius: cell.first || cell.last ? Theme.cardRadius : 0
        color: cell.ground

        // Makes the corners towards the neighbouring row square again.
        Rectangle {
            y: cell.last ? 0 : parent.height - height
            width: parent.width
            height: Theme.cardRadius
            color: cell.ground
            visible: cell.first !== cell.last
        }
    }

    Item {
        id: place

        x: Math.round(Theme.margin)
        anchors.verticalCenter: parent.verticalCenter
        anchors.alignWhenCentered: true
        width: Math.round(Theme.points(cell.iconSize))
        height: width

        Rectangle {
            anchors.fill: parent
            radius: Theme.iconRadius
            color: Theme.separator
            opacity: 0.6
            visible: image.status !== Image.Ready
        }

        Image {
            id: image

            readonly property real edge: Math.round(parent.width * Screen.devicePixelRatio)

            anchors.fill: parent
            source: cell.picture
            sourceSize.width: edge
            sourceSize.height: edge
            asynchronous: true
            Accessible.ignored: true
        }
    }

    Column {
        anchors {
            left: place.right
            leftMargin: Theme.points(12)
            right: mark.visible ? mark.left : parent.right
            rightMargin: mark.visible ? Theme.points(10) : Theme.margin
            verticalCenter: parent.verticalCenter
        }

        Text {
            width: parent.width
            text: cell.name
            color: Theme.text
            font.pixelSize: Theme.bodySize
            elide: Text.ElideMiddle
            textFormat: Text.PlainText
            Accessible.ignored: true
        }

        Text {
            width: parent.width
            text: cell.detail
            visible: text !== ""
            color: Theme.secondaryText
            font.pixelSize: Theme.tabSize
            elide: Text.ElideMiddle
            textFormat: Text.PlainText
            Accessible.ignored: true
        }
    }

    CheckMark {
        id: mark

        anchors {
            right: parent.right
            rightMargin: Theme.margin
            verticalCenter: parent.verticalCenter
        }
        visible: cell.checked
    }
}
