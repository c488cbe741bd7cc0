import QtQuick
import Dubrix
import DubrixControls

/// The main screen's table: five sections, eight rows. Heights come from the controller.
Flickable {
    id: view

    required property PrefsViewController controller

    function rowHeight(section: int, row: int): real {
        return controller.prefTable.reloads >= 0
               ? controller.tableViewHeightForRowAtIndexPath(section, row) : 0;
    }
    function isSelected(section: int, row: int): bool {
        return controller.prefTable.selectedSection === section
               && controller.prefTable.selectedRow === row;
    }
    function select(section: int, row: int) {
        controller.tableViewDidSelectRowAtIndexPath(section, row);
    }

    contentWidth: width
    contentHeight: table.height + Theme.points(controller.prefTable.bottomInset)
    boundsBehavior: Flickable.DragOverBounds
    clip: true
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Settings")

    Column {
        id: table

        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(view.width - 2 * Theme.margin, Theme.contentWidth)
        spacing: Theme.points(22)
        topPadding: Theme.points(18)

        Text {
            leftPadding: Theme.points(4)
            visible: !view.controller.headerView.hidden
            text: "Dubrix"
            color: Theme.text
            font.pixelSize: Theme.largeTitleSize
            font.weight: Font.Bold
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }

        SettingsSection {
            width: parent.width

            SettingsRow {
                title: "Application"
                value: view.controller.appNameLabel.text
                rowHeight: view.rowHeight(0, 0)
                selected: view.isSelected(0, 0)
                disclosure: true
                last: true
                onTapped: view.select(0, 0)
            }
        }

        SettingsSection {
            width: parent.width

            SwitchRow {
                title: "Custom name"
                rowHeight: view.rowHeight(1, 0)
                on: view.controller.customNameSwitch.on
                last: view.controller.textfieldCell.hidden
                onTapped: view.select(1, 0)
                onChangeRequested: on => view.controller.nameSwitchChanged(on)
            }

            TextFieldRow {
                id: nameRow

                title: "Name"
                rowHeight: view.rowHeight(1, 1)
                hidden: view.controller.textfieldCell.hidden
                contents: view.controller.textField.text
                last: true
                onTapped: view.select(1, 1)
                onEdited: text => view.controller.textFieldChanged(text)
                onReturned: view.controller.textFieldShouldReturn()

                Connections {
                    target: view.controller.textField
                    function onEditingEnded() {
                        nameRow.leave();
                    }
                }
            }
        }

        SettingsSection {
            width: parent.width

            SwitchRow {
                title: "Custom color"
                rowHeight: view.rowHeight(2, 0)
                on: view.controller.customColorSwitch.on
                last: view.controller.colorCell.hidden
                onTapped: view.select(2, 0)
                onChangeRequested: on => view.controller.colorSwitchChanged(on)
            }

            SettingsRow {
                title: "Select color"
                rowHeight: view.rowHeight(2, 1)
                hidden: view.controller.colorCell.hidden
                selected: view.isSelected(2, 1)
                disclosure: true
                last: true
                onTapped: view.select(2, 1)
            }

            ColorStrip {
                rowHeight: view.rowHeight(2, 2)
                hidden: view.controller.colorView.hidden
                color: view.controller.colorView.backgroundColor
                onTapped: view.select(2, 2)
            }
        }

        SettingsSection {
            width: parent.width

            SettingsRow {
                title: "Duplicate"
                rowHeight: view.rowHeight(3, 0)
                selected: view.isSelected(3, 0)
                action: true
                last: true
                onTapped: view.select(3, 0)
            }
        }

        SettingsSection {
            width: parent.width

            SettingsRow {
                title: "Update duplicates"
                rowHeight: view.rowHeight(4, 0)
                selected: view.isSelected(4, 0)
                action: true
                last: true
                onTapped: view.select(4, 0)
            }
        }
    }
}
