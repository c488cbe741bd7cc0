pragma ComponentBehavior: Bound

import QtQuick

/// An alert as the phone draws it, over a dimmed window: title, message, then the buttons side by side
/// when there are two that fit, else one below the other. Buttons are counted from 0; -1 is none.
FocusScope {
    id: view

    required property string title
    required property string message
    /// The buttons' titles, a list of strings.
    required property var buttons
    property int strongButton: buttons.length === 2 ? 1 : 0
    /// Where the keyboard begins.
    property int startButton: strongButton
    /// The one that Escape presses.
    property int cancelButton: -1
    property int dangerousButton: -1
    /// The turning spinner's size in points; empty for an alert without one.
    property size spinner: Qt.size(0, 0)
    /// From 0, away, to 1, there.
    property real presence: 1

    signal pressed(int button)

    readonly property int count: buttons.length
    readonly property bool sideBySide: count === 2 && widest.width < box.width / 2

    function step(by: int) {
        for (let index = 0; index < count; ++index)
            if (buttonList.itemAt(index).activeFocus)
                return buttonList.itemAt((index + by + count) % count).forceActiveFocus();
    }

    Keys.onLeftPressed: step(-1)
    Keys.onUpPressed: step(-1)
    Keys.onRightPressed: step(1)
    Keys.onDownPressed: step(1)
    Keys.onEscapePressed: event => {
        if (cancelButton >= 0 && !event.isAutoRepeat)
            pressed(cancelButton);
    }

    Shade {
        anchors.fill: parent
        opacity: view.presence
    }

    // The widest of the buttons' titles, to see whether two fit beside each other.
    Column {
        id: widest

        visible: false

        Repeater {
            model: view.buttons
            delegate: Text {
                required property string modelData
                text: modelData
                font.pixelSize: Theme.bodySize
                font.weight: Font.DemiBold
                leftPadding: Theme.points(10)
                rightPadding: Theme.points(10)
                Accessible.ignored: true
            }
        }
    }

    component Words: Text {
        width: parent.width
        visible: text !== ""
        color: Theme.text
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        textFormat: Text.PlainText
    }

    Rectangle {
        id: box

        anchors.centerIn: parent
        width: Math.min(Theme.points(290), parent.width - 2 * Theme.margin)
        height: texts.height + buttonGrid.height
        radius: Theme.points(14)
        color: Theme.alert
        border.width: Theme.dark ? 1 : 0
        border.color: Theme.separator
        opacity: view.presence
        scale: view.spinner.width > 0 ? 1 : 1.08 - 0.08 * view.presence
        Accessible.role: Accessible.AlertMessage
        Accessible.name: view.title
        Accessible.description: view.message

        Flickable {
            id: texts

            readonly property real most: view.height - 2 * Theme.margin - buttonGrid.height

            width: parent.width
            height: Math.min(contentHeight, Math.max(most, Theme.points(80)))
            contentHeight: column.height
            clip: true
            interactive: contentHeight > height

            Column {
                id: column

                x: Theme.margin
                width: parent.width - 2 * Theme.margin
                topPadding: Theme.points(20)
                bottomPadding: Theme.points(20)
                spacing: Theme.points(5)

                Words {
                    text: view.title
                    font.pixelSize: Theme.titleSize
                    font.weight: Font.DemiBold
                }

                Words {
                    text: view.message
                    font.pixelSize: Theme.noteSize
                    lineHeight: 1.15
                }
            }

            // The message ends in blank lines that leave room for it.
            Spinner {
                anchors.horizontalCenter: column.horizontalCenter
                y: column.y + column.height - Theme.points(20) - height
                width: Theme.points(view.spinner.width)
                height: Theme.points(view.spinner.height)
                visible: width > 0
            }
        }

        Grid {
            id: buttonGrid

            anchors.top: texts.bottom
            width: parent.width
            columns: view.sideBySide ? 2 : 1

            Repeater {
                id: buttonList

                model: view.buttons
                delegate: AlertButton {
                    required property int index
                    required property string modelData

                    width: view.sideBySide ? buttonGrid.width / 2 : buttonGrid.width
                    text: modelData
                    focus: index === view.startButton
                    strong: index === view.strongButton
                    dangerous: index === view.dangerousButton
                    lineAbove: true
                    lineLeft: view.sideBySide && index > 0
                    onTapped: view.pressed(index)
                }
            }
        }
    }
}
