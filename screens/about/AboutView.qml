pragma ComponentBehavior: Bound

import QtQuick
import Dubrix
import DubrixControls

/// The about screen: the application with its version, and two sections of rows.
Flickable {
    id: view

    required property AboutTableViewController controller

    function isSelected(section: int, row: int): bool {
        return controller.aboutTable.selectedSection === section
               && controller.aboutTable.selectedRow === row;
    }
    function select(section: int, row: int) {
        controller.tableViewDidSelectRowAtIndexPath(section, row);
    }

    contentWidth: width
    contentHeight: table.height + Theme.points(controller.aboutTable.bottomInset)
    boundsBehavior: Flickable.DragOverBounds
    clip: true
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("About")

    component Row: SettingsRow {
        id: aboutRow

        required property int section
        required property int row
        /// Whether it leads out of the application.
        property bool leadsOut: false

        rowHeight: 44
        selected: view.isSelected(section, row)
        onTapped: view.select(section, row)

        Text {
            anchors {
                right: parent.right
                rightMargin: Theme.margin
                verticalCenter: parent.verticalCenter
            }
            visible: aboutRow.leadsOut
            text: "\u2197"
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            Accessible.ignored: true
        }
    }

    Column {
        id: table

        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(view.width - 2 * Theme.margin, Theme.contentWidth)
        spacing: Theme.points(22)
        topPadding: Theme.points(26)

        Column {
            width: parent.width
            spacing: Theme.points(4)
            bottomPadding: Theme.points(6)

            Image {
                anchors.horizontalCenter: parent.horizontalCenter
                width: Theme.points(76)
                height: Theme.points(76)
                sourceSize.width: width * Screen.devicePixelRatio
                sourceSize.height: height * Screen.devicePixelRatio
                source: "qrc:/resources/AppIcon.png"
                Accessible.ignored: true
            }

            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                topPadding: Theme.points(8)
                text: "Dubrix"
                color: Theme.text
                font.pixelSize: Theme.points(24)
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }

            Text {
                width: parent.width
                text: view.controller.versionString.text
                color: Theme.secondaryText
                font.pixelSize: Theme.noteSize
                horizontalAlignment: Text.AlignHCenter
                elide: Text.ElideRight
                textFormat: Text.PlainText
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }

        SettingsSection {
            width: parent.width

            Row {
                section: 0
                row: 0
                title: "Follow @iQ7r2m"
                leadsOut: true
            }

            Row {
                section: 0
                row: 1
                title: "Donate"
                leadsOut: true
                last: true
            }
        }

        SettingsSection {
            width: parent.width

            Row {
                section: 1
                row: 0
                title: "Instructions"
                disclosure: true
            }

            Row {
                section: 1
                row: 1
                title: "Changelog"
                disclosure: true
            }

            Row {
                section: 1
                row: 2
                title: "Credits & FAQ"
                disclosure: true
                last: true
            }
        }
    }
}
