import QtQuick
import DubrixControls

/// A row that is a text field, with its title as the placeholder and a button that gives up the
/// keyboard.
SettingsRow {
    id: row

    required property string contents

    signal edited(string text)
    signal returned

    /// Takes the keyboard from the field; from here it goes on to what comes after the row.
    function leave() {
        end.forceActiveFocus();
    }

    selectable: false
    titleShown: false
    Accessible.ignored: true

    TextEntry {
        id: input

        anchors {
            left: parent.left
            leftMargin: Theme.margin
            right: done.visible ? done.left : parent.right
            rightMargin: done.visible ? Theme.points(8) : Theme.margin
            verticalCenter: parent.verticalCenter
        }
        title: row.title
        visible: row.shown
        Accessible.ignored: !row.shown
        contents: row.contents
        activeFocusOnTab: row.shown
        EnterKey.type: Qt.EnterKeyDone
        onEdited: text => row.edited(text)
        // A long text that is not being edited shows its beginning.
        onTextChanged: if (!activeFocus)
            cursorPosition = 0
        onAccepted: row.returned()
        onActiveFocusChanged: if (!activeFocus)
            cursorPosition = 0
    }

    TextButton {
        id: done

        anchors {
            right: parent.right
            rightMargin: Theme.points(8)
            verticalCenter: parent.verticalCenter
        }
        text: qsTr("Done")
        visible: input.activeFocus
        onTapped: row.returned()
    }

    // What is no stop of the Tab key would have it begin again at the top.
    Item {
        id: end

        Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
        Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
    }
}
