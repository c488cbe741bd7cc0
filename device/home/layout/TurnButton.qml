import QtQuick
import DubrixHome

/// An arrow that turns the page.
Text {
    id: button

    required property string name

    signal tapped

    width: HomeTheme.points(34)
    color: HomeTheme.ink
    opacity: enabled ? (tap.pressed ? 0.5 : 1) : 0.3
    font.pixelSize: HomeTheme.points(22)
    horizontalAlignment: Text.AlignHCenter
    verticalAlignment: Text.AlignVCenter
    Accessible.role: Accessible.Button
    Accessible.name: name
    Accessible.onPressAction: if (button.enabled && button.visible) button.tapped()

    TapHandler {
        id: tap

        onTapped: button.tapped()
    }
}
