import QtQuick
import QtQuick.Window

/// One application of the picker's list: icon, name, check mark. Rows of a section form one card.
Item {
    id: cell

    required property int section
    required property int row
    required property string name
    required property string detail
    required property string icon
    required property int iconSize
    required property bool checked
    required property bool last
    property bool selected: false

    signal tapped

    readonly property bool first: row === 0
    readonly property color ground: tap.pressed || selected ? Theme.cardPressed : Theme.card

    height: Math.round(Theme.points(44))
    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.description: detail
    Accessible.focusable: true
    Accessible.selectable: true
    Accessible.selected: checked
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: if (cell.enabled && cell.visible) cell.tapped()
    Keys.onSpacePressed: cell.tapped()
    Keys.onReturnPressed: cell.tapped()
    Keys.onEnterPressed: cell.tapped()

    Rectangle {
        anchors.fill: parent
        radius: cell.first || cell.last ? Theme.cardRadius : 0
        color: cell.ground
    }

    // Makes the corners towards the neighbouring row square again.
    Rectangle {
        y: cell.last ? 0 : parent.height - height
        width: parent.width
        height: Theme.cardRadius
        color: cell.ground
        visible: cell.first !== cell.last
    }

    FocusRing {
        target: cell
        inset: 2
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
            visible: picture.status !== Image.Ready
        }

        Image {
            id: picture

            readonly property real edge: Math.round(parent.width * Screen.devicePixelRatio)

            anchors.fill: parent
            source: cell.icon
            sourceSize: Qt.size(edge, edge)
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

    Rectangle {
        anchors {
            left: place.right
            leftMargin: Theme.points(12)
            right: parent.right
            bottom: parent.bottom
        }
        height: Theme.hairline
        color: Theme.separator
        visible: !cell.last
    }

    TapHandler {
        id: tap

        onTapped: cell.tapped()
    }
}
