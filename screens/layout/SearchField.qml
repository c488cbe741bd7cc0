import QtQuick

/// A field that searches the list below it. Escape clears it.
FocusScope {
    id: field

    required property string text

    signal edited(string text)

    /// Goes on with a text that was begun elsewhere.
    function typeAhead(letters: string) {
        input.forceActiveFocus();
        input.insert(input.length, letters);
        field.edited(input.text);
    }

    implicitHeight: Math.round(Theme.points(36))

    Rectangle {
        anchors.fill: parent
        radius: Theme.cardRadius
        color: Theme.card
        border.width: Theme.hairline
        border.color: Theme.fieldBorder
    }

    FocusRing {
        target: input
        radius: Theme.cardRadius
    }

    Item {
        id: glass

        x: Theme.points(10)
        anchors.verticalCenter: parent.verticalCenter
        width: Theme.points(15)
        height: width

        Rectangle {
            width: Theme.points(11)
            height: width
            radius: width / 2
            color: "transparent"
            border.width: Theme.points(1.6)
            border.color: Theme.secondaryText
            antialiasing: true
        }

        Rectangle {
            x: Theme.points(9)
            y: Theme.points(11)
            width: Theme.points(6)
            height: Theme.points(1.8)
            radius: height / 2
            rotation: 45
            color: Theme.secondaryText
            antialiasing: true
        }
    }

    TextInput {
        id: input

        anchors {
            left: glass.right
            leftMargin: Theme.points(8)
            right: clear.left
            verticalCenter: parent.verticalCenter
        }
        focus: true
        clip: true
        text: field.text
        color: Theme.text
        selectionColor: Theme.accent
        selectedTextColor: Theme.onAccent
        font.pixelSize: Theme.bodySize
        selectByMouse: true
        activeFocusOnTab: true
        inputMethodHints: Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase
        EnterKey.type: Qt.EnterKeySearch
        Accessible.role: Accessible.EditableText
        Accessible.name: qsTr("Search")
        Accessible.editable: true
        Accessible.searchEdit: true
        onTextEdited: field.edited(text)
        Keys.onEscapePressed: event => {
            event.accepted = text !== "";
            field.edited("");
        }

        Text {
            anchors.fill: parent
            text: qsTr("Search")
            color: Theme.secondaryText
            font: input.font
            verticalAlignment: Text.AlignVCenter
            visible: input.text === "" && input.preeditText === ""
            Accessible.ignored: true
        }
    }

    TapHandler {
        onTapped: input.forceActiveFocus()
    }

    Item {
        id: clear

        function press() {
            field.edited("");
            input.forceActiveFocus();
        }

        anchors.right: parent.right
        width: visible ? Theme.points(36) : Theme.points(10)
        height: parent.height
        visible: input.text !== ""
        activeFocusOnTab: visible
        Accessible.role: Accessible.Button
        Accessible.name: qsTr("Clear search")
        Accessible.focusable: true
        Accessible.onPressAction: if (enabled && visible) press()
        Keys.onSpacePressed: press()
        Keys.onReturnPressed: press()

        Rectangle {
            anchors.centerIn: parent
            width: Theme.points(17)
            height: width
            radius: width / 2
            color: Theme.secondaryText
            opacity: clearTap.pressed ? 0.5 : 1

            Repeater {
                model: [45, -45]

                Rectangle {
                    required property int modelData

                    anchors.centerIn: parent
                    width: Theme.points(9)
                    height: Theme.points(1.6)
                    radius: height / 2
                    rotation: modelData
                    color: Theme.card
                    antialiasing: true
                }
            }
        }

        FocusRing {
            target: clear
            inset: Theme.points(3)
        }

        TapHandler {
            id: clearTap

            onTapped: clear.press()
        }
    }
}
