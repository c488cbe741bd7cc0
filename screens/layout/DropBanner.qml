import QtQuick
import Dubrix

/// How the installation of a dropped archive goes. A failure stays until it is tapped away.
Rectangle {
    id: banner

    required property ArchiveDrop drops
    readonly property bool shown: drops.words !== ""

    height: label.height + Theme.points(drops.busy ? 38 : 28)
    radius: Theme.points(14)
    color: Theme.alert
    border.width: 1
    border.color: Theme.separator
    visible: shown
    Accessible.role: Accessible.AlertMessage
    Accessible.name: drops.words

    Text {
        id: label

        x: Theme.margin
        y: Theme.points(14)
        width: parent.width - 2 * x
        text: banner.drops.words
        color: Theme.text
        font.pixelSize: Theme.noteSize
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        textFormat: Text.PlainText
        Accessible.ignored: true
    }

    Rectangle {
        anchors {
            left: label.left
            top: label.bottom
            topMargin: Theme.points(10)
        }
        width: Math.max(height, label.width * banner.drops.percent / 100)
        height: Theme.points(4)
        radius: height / 2
        color: Theme.accent
        visible: banner.drops.busy
    }

    TapHandler {
        enabled: !banner.drops.busy
        onTapped: banner.drops.passed()
    }
    Timer {
        interval: 5000
        running: banner.shown && !banner.drops.busy && !banner.drops.failed
        onTriggered: banner.drops.passed()
    }
}
