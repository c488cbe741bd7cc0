pragma ComponentBehavior: Bound

import QtQuick

/// One line of text that a person writes. It shows `contents` and tells of every change, typed or
/// made in another way; whoever owns `contents` takes it over.
TextInput {
    id: entry

    required property string contents
    /// What it is called; stands in it while it is empty.
    required property string title

    /// What it stands on: text for which there is no room fades into that.
    property color ground: Theme.card
    /// How much of the text is out of sight on the left.
    property real passed: 0

    signal edited(string text)

    component Fade: Rectangle {
        width: Theme.points(20)
        height: entry.height
        gradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop {
                position: 0
                color: Qt.alpha(entry.ground, 0)
            }
            GradientStop {
                position: 1
                color: entry.ground
            }
        }
    }

    clip: true
    // It moves whenever the text does.
    onCursorRectangleChanged: passed = -positionToRectangle(0).x
    text: contents
    color: Theme.text
    selectionColor: Theme.accent
    selectedTextColor: Theme.onAccent
    font.pixelSize: Theme.bodySize
    selectByMouse: true
    activeFocusOnTab: true
    Accessible.role: Accessible.EditableText
    Accessible.name: title
    Accessible.editable: true
    onTextChanged: if (text !== contents)
        edited(text)

    Fade {
        rotation: 180
        visible: entry.passed > 1
    }
    Fade {
        // The text is cut beyond the edge: there is room for the cursor.
        x: entry.width - width + entry.cursorRectangle.width + 2
        visible: entry.contentWidth - entry.passed > entry.width + 1
    }

    Text {
        anchors.fill: parent
        text: entry.title
        color: Theme.secondaryText
        font: entry.font
        verticalAlignment: Text.AlignVCenter
        visible: entry.text === "" && entry.preeditText === ""
        Accessible.ignored: true
    }
}
