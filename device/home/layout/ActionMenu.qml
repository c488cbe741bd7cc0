import QtQuick
import DubrixControls
import DubrixHome

/// What can be done with an icon that is held, beside that icon.
FadingLayer {
    id: menu

    required property HomeScreen home
    property string identifier: ""
    property string name: ""
    property rect beside: Qt.rect(0, 0, 0, 0)

    function open(icon: Item, application: string, called: string) {
        beside = icon.mapToItem(menu, Qt.rect(0, 0, icon.width, icon.height));
        identifier = application;
        name = called;
        shown = true;
        exportButton.forceActiveFocus();
    }

    Keys.onEscapePressed: menu.shown = false
    Keys.onUpPressed: exportButton.forceActiveFocus()
    Keys.onDownPressed: removeButton.forceActiveFocus()

    Shade {
        anchors.fill: parent
        onTapped: menu.shown = false
    }

    Rectangle {
        id: card

        readonly property real below: menu.beside.y + menu.beside.height + Theme.points(30)
        readonly property real farthest: menu.width - width - Theme.margin

        x: Math.max(Theme.margin, Math.min(menu.beside.x + (menu.beside.width - width) / 2, farthest))
        y: below + height < menu.height - Theme.margin ? below
                                                       : menu.beside.y - height - Theme.points(10)
        width: Theme.points(230)
        height: choices.height
        radius: Theme.points(14)
        color: Theme.alert
        border.width: 1
        border.color: Theme.separator
        Accessible.role: Accessible.PopupMenu
        Accessible.name: menu.name

        Column {
            id: choices

            width: parent.width

            Text {
                width: parent.width
                padding: Theme.points(12)
                text: menu.name
                color: Theme.secondaryText
                font.pixelSize: Theme.noteSize
                horizontalAlignment: Text.AlignHCenter
                elide: Text.ElideMiddle
                textFormat: Text.PlainText
            }
            AlertButton {
                id: exportButton

                width: parent.width
                text: qsTr("Export")
                lineAbove: true
                onTapped: {
                    menu.shown = false;
                    menu.home.save(menu.identifier);
                }
            }
            AlertButton {
                id: removeButton

                width: parent.width
                text: qsTr("Remove")
                dangerous: true
                lineAbove: true
                onTapped: {
                    menu.shown = false;
                    menu.home.remove(menu.identifier);
                }
            }
        }
    }
}
