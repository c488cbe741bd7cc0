import QtQuick

/// A row that is a text field, with its title as the placeholder and a button that gives up the
/// keyboard.
SettingsRow {
    id: row

    property string text

    signal edited(string text)
    signal returned

    titleShown: false
    Accessible.ignored: true

    TextInput {
        id: input

        anchors {
            left: parent.left
            leftMargin: Theme.margin
            right: done.left
            rightMargin: Theme.points(8)
            verticalCenter: parent.verticalCenter
        }
        enabled: row.shown
        clip: true
        text: row.text
        color: Theme.text
        selectionColor: Theme.accent
        selectedTextColor: Theme.onAccent
        font.pixelSize: Theme.bodySize
        selectByMouse: true
        activeFocusOnTab: row.shown
        EnterKey.type: Qt.EnterKeyDone
        Accessible.role: Accessible.EditableText
        Accessible.name: row.title
        Accessible.editable: true
        onTextEdited: row.edited(text)
        // A long text that is not being edited shows its beginning.
        onTextChanged: if (!activeFocus)
            cursorPosition = 0
        onAccepted: row.returned()
        onActiveFocusChanged: if (!activeFocus)
            cursorPosition = 0

        Text {
            anchors.fill: parent
            text: row.title
            color: Theme.secondaryText
            font: input.font
            visible: input.text === "" && input.preeditText === ""
            Accessible.ignored: true
        }
    }

    TextButton {
        id: done

        anchors {
            right: parent.right
            rightMargin: Theme.points(8)
            verticalCenter: parent.verticalCenter
        }
        text: "Done"
        visible: input.activeFocus
        onTapped: row.returned()
    }
}
