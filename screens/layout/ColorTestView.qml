import QtQuick
import Dubrix

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
    Rectangle {
        id: button

        x: (view.width - width) / 2
        y: Theme.points(view.copyButton.frame.y)
        width: Theme.points(view.copyButton.frame.width)
        height: Theme.points(view.copyButton.frame.height)
        radius: Theme.points(view.copyButton.cornerRadius)
        color: view.copyButton.backgroundColor
        border.width: Math.max(Theme.hairline, Theme.points(view.copyButton.borderWidth))
        border.color: view.copyButton.borderColor
        activeFocusOnTab: true
        Accessible.role: Accessible.Button
        Accessible.name: view.copyButton.title
        Accessible.focusable: true
        Accessible.onPressAction: if (enabled && visible) view.controller.selectColorTapped()
        Keys.onSpacePressed: view.controller.selectColorTapped()
        Keys.onReturnPressed: view.controller.selectColorTapped()
        Keys.onEnterPressed: view.controller.selectColorTapped()

        Text {
            anchors.fill: parent
            text: view.copyButton.title
            color: view.copyButton.titleColor
            opacity: tap.pressed ? 0.4 : 1
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
                border.color: Theme.isLight(button.color) ? Theme.accentOnLight
                                                          : Theme.accentOnDark
            }
        }

        TapHandler {
            id: tap

            onTapped: view.controller.selectColorTapped()
        }
    }
}
