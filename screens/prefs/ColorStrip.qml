import QtQuick
import Dubrix
import DubrixControls

/// The strip that shows the chosen tint across the foot of its section.
Item {
    id: strip

    required property real rowHeight
    required property color color
    /// Leaves the strip's place empty.
    property bool hidden: false

    signal tapped

    width: parent?.width ?? 0
    height: Theme.points(rowHeight)
    visible: height > 0
    enabled: !hidden
    opacity: hidden ? 0 : 1
    clip: true
    Accessible.role: Accessible.Graphic
    Accessible.name: qsTr("Color")
    Accessible.description: ColorWords.nameOf(color) + ", " + ColorWords.componentsOf(color)
    Accessible.ignored: rowHeight === 0 || hidden

    Behavior on height {
        NumberAnimation {
            duration: Theme.duration(180)
            easing.type: Easing.InOutQuad
        }
    }

    // Its upper corners lie outside the clipped strip, so only the lower ones are round.
    Rectangle {
        y: -Theme.cardRadius
        width: parent.width
        height: parent.height + Theme.cardRadius
        radius: Theme.cardRadius
        color: strip.color
        border.width: Theme.hairline
        border.color: Theme.separator
    }

    TapHandler {
        onTapped: strip.tapped()
    }
}
