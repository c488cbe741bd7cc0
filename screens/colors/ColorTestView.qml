import QtQuick
import Dubrix
import DubrixControls

/// The colour test: one button, wider than any screen.
Item {
    id: view

    required property FirstViewController controller
    readonly property var copyButton: controller.copyButton

    clip: true

    Text {
        x: (parent.width - width) / 2
        y: Theme.points(18)
        width: Math.min(view.width - 2 * Theme.margin, Theme.contentWidth)
        leftPadding: Theme.points(4)
        text: "Color test"
        color: Theme.text
        font.pixelSize: Theme.largeTitleSize
        font.weight: Font.Bold
        elide: Text.ElideRight
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }

    // The window may have been resized since the frame was computed; the button stays in the middle.
    Pressable {
        id: button

        x: (view.width - width) / 2
        y: Theme.points(view.copyButton.frame.y)
        width: Theme.points(view.copyButton.frame.width)
        height: Theme.points(view.copyButton.frame.height)
        text: view.copyButton.title
        onTapped: view.controller.selectColorTapped()

        Rectangle {
            anchors.fill: parent
            radius: Theme.points(view.copyButton.cornerRadius)
            color: view.copyButton.backgroundColor
            border.width: Math.max(Theme.hairline, Theme.points(view.copyButton.borderWidth))
            border.color: view.copyButton.borderColor
        }

        Text {
            anchors.fill: parent
            text: button.text
            color: view.copyButton.titleColor
            opacity: button.pressed ? 0.4 : 1
            font.pixelSize: Theme.points(view.copyButton.fontSize)
            horizontalAlignment: view.copyButton.contentHorizontalAlignment
            verticalAlignment: Text.AlignVCenter
            textFormat: Text.PlainText
            Accessible.ignored: true
        }

        // Around what the window shows of the button.
        Item {
            x: -button.x
            width: view.width
            height: button.height

            FocusRing {
                target: button
                inset: Theme.points(3)
                radius: Theme.points(5)
                border.color: Theme.isLight(view.copyButton.backgroundColor) ? Theme.accentOnLight
                                                          : Theme.accentOnDark
            }
        }
    }
}
