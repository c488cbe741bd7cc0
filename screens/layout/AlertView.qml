pragma ComponentBehavior: Bound

import QtQuick
import Dubrix

/// An alert as the phone draws it: title, message, then the buttons side by side when there are two
/// that fit, else one below the other.
FocusScope {
    id: view

    required property AlertController controller
    required property ModalLayer modalLayer
    readonly property real presence: modalLayer.presence

    readonly property int count: controller.buttons.length
    readonly property bool sideBySide: count === 2 && widest.width < box.width / 2
    readonly property real buttonHeight: Theme.points(46)

    focus: true

    Rectangle {
        anchors.fill: parent
        color: Theme.dim
        opacity: view.presence
    }

    // The widest of the buttons' titles, to see whether two fit beside each other.
    Column {
        id: widest

        visible: false

        Repeater {
            model: view.controller.buttons
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

    Rectangle {
        id: box

        anchors.centerIn: parent
        width: Math.min(Theme.points(290), parent.width - 2 * Theme.margin)
        height: texts.height + buttons.height
        radius: Theme.points(14)
        color: Theme.alert
        border.width: Theme.dark ? 1 : 0
        border.color: Theme.separator
        opacity: view.presence
        scale: view.controller.hasSpinner ? 1 : 1.08 - 0.08 * view.presence
        Accessible.role: Accessible.AlertMessage
        Accessible.name: view.controller.title
        Accessible.description: view.controller.message

        Flickable {
            id: texts

            readonly property real most: view.height - 2 * Theme.margin - buttons.height

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

                Text {
                    width: parent.width
                    text: view.controller.title
                    visible: text !== ""
                    color: Theme.text
                    font.pixelSize: Theme.titleSize
                    font.weight: Font.DemiBold
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    textFormat: Text.PlainText
                }

                Text {
                    id: message

                    width: parent.width
                    text: view.controller.message
                    visible: text !== ""
                    color: Theme.text
                    font.pixelSize: Theme.noteSize
                    lineHeight: 1.15
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    textFormat: Text.PlainText
                }
            }

            // The message ends in blank lines that leave room for it.
            Spinner {
                anchors.horizontalCenter: column.horizontalCenter
                y: column.y + column.height - Theme.points(20) - height
                width: Theme.points(view.controller.spinnerFrame.width)
                height: Theme.points(view.controller.spinnerFrame.height)
                visible: view.controller.hasSpinner
            }
        }

        Rectangle {
            anchors.top: texts.bottom
            width: parent.width
            height: Theme.hairline
            color: Theme.separator
            visible: view.count > 0
        }

        Grid {
            id: buttons

            anchors.top: texts.bottom
            width: parent.width
            columns: view.sideBySide ? 2 : 1

            Repeater {
                id: buttonList

                model: view.controller.buttons
                delegate: AlertButton {
                    required property int index
                    required property string modelData

                    width: view.sideBySide ? buttons.width / 2 : buttons.width
                    height: view.buttonHeight
                    text: modelData
                    focus: index === view.count - 1
                    strong: index === (view.count === 2 ? 1 : 0)
                    lineAbove: !view.sideBySide && index > 0
                    lineLeft: view.sideBySide && index > 0
                    onTapped: view.controller.press(index)
                }
            }
        }
    }
}
