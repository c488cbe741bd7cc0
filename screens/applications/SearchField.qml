import QtQuick
import DubrixControls

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

    TextEntry {
        id: input

        anchors {
            left: glass.right
            leftMargin: Theme.points(8)
            right: clear.left
            verticalCenter: parent.verticalCenter
        }
        focus: true
        title: qsTr("Search")
        contents: field.text
        inputMethodHints: Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase
        EnterKey.type: Qt.EnterKeySearch
        Accessible.searchEdit: true
        onEdited: text => field.edited(text)
        Keys.onEscapePressed: event => {
            event.accepted = text !== "";
            field.edited("");
        }
    }

    TapHandler {
        onTapped: input.forceActiveFocus()
    }

    Pressable {
        id: clear

        anchors.right: parent.right
        width: visible ? Theme.points(36) : Theme.points(10)
        height: parent.height
        visible: input.text !== ""
        text: qsTr("Clear search")
        onTapped: {
            field.edited("");
            input.forceActiveFocus();
        }

        Rectangle {
            anchors.centerIn: parent
            width: Theme.points(17)
            height: width
            radius: width / 2
            color: Theme.secondaryText
            opacity: clear.pressed ? 0.5 : 1

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
            inset: Theme.points(3)
        }
    }
}
