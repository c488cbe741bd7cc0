import QtQuick
import DubrixHome

/// What can be done with an icon that is held, beside that icon.
LayerScope {
    id: menu

    required property HomeScreen home
    property bool shown: false
    property string identifier: ""
    property string name: ""
    property rect beside: Qt.rect(0, 0, 0, 0)

    signal closed

    function open(icon: Item, application: string, called: string) {
        beside = icon.mapToItem(menu, Qt.rect(0, 0, icon.width, icon.height));
        identifier = application;
        name = called;
        shown = true;
        exportButton.forceActiveFocus();
    }
    function close() {
        shown = false;
        closed();
    }

    enabled: shown
    Accessible.role: Accessible.LayeredPane
    opacity: shown ? 1 : 0
    visible: opacity > 0
    Keys.onEscapePressed: menu.close()
    Keys.onUpPressed: exportButton.forceActiveFocus()
    Keys.onDownPressed: removeButton.forceActiveFocus()

    Behavior on opacity {
        NumberAnimation {
            duration: HomeTheme.duration(140)
        }
    }

    Rectangle {
        anchors.fill: parent
        color: HomeTheme.dim

        TapHandler {
            acceptedButtons: Qt.LeftButton | Qt.RightButton
            gesturePolicy: TapHandler.ReleaseWithinBounds
            onTapped: menu.close()
        }
    }

    Rectangle {
        id: card

        readonly property real below: menu.beside.y + menu.beside.height + HomeTheme.points(30)

        x: Math.max(HomeTheme.margin, Math.min(menu.beside.x + menu.beside.width / 2 - width / 2, menu.width - width - HomeTheme.margin))
        y: below + height < menu.height - HomeTheme.margin ? below : menu.beside.y - height - HomeTheme.points(10)
        width: HomeTheme.points(230)
        height: choices.height
        radius: HomeTheme.points(15)
        color: HomeTheme.card
        border.width: 1
        border.color: HomeTheme.separator
        Accessible.role: Accessible.PopupMenu
        Accessible.name: menu.name

        Column {
            id: choices

            width: parent.width

            Text {
                width: parent.width
                padding: HomeTheme.points(12)
                text: menu.name
                color: HomeTheme.quietInk
                font.pixelSize: HomeTheme.noteSize
                horizontalAlignment: Text.AlignHCenter
                elide: Text.ElideMiddle
                textFormat: Text.PlainText
            }
            CardButton {
                id: exportButton

                width: parent.width
                text: qsTr("Export")
                lineAbove: true
                onTapped: {
                    menu.close();
                    menu.home.save(menu.identifier);
                }
            }
            CardButton {
                id: removeButton

                width: parent.width
                text: qsTr("Remove")
                dangerous: true
                lineAbove: true
                onTapped: {
                    menu.close();
                    menu.home.remove(menu.identifier);
                }
            }
        }
    }
}
