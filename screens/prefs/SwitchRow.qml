import QtQuick
import DubrixControls

/// A row with a switch at its right.
SettingsRow {
    id: row

    required property bool on

    signal changeRequested(bool on)

    selectable: false
    Accessible.ignored: true

    ToggleSwitch {
        anchors {
            right: parent.right
            rightMargin: Theme.margin
            verticalCenter: parent.verticalCenter
        }
        text: row.title
        on: row.on
        onChangeRequested: on => row.changeRequested(on)
    }
}
