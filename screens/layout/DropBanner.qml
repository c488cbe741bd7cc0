import QtQuick
import Dubrix

/// How the installation of a dropped archive goes. A failure stays until it is tapped away.
Rectangle {
    id: banner

    required property ArchiveDrop drops
    readonly property string words: drops?.words ?? ""
    readonly property bool busy: drops?.busy ?? false
    readonly property bool shown: words !== ""

    height: label.height + Theme.points(busy ? 38 : 28)
    radius: Theme.points(14)
    color: Theme.alert
    border.width: 1
    border.color: Theme.separator
    visible: shown
    Accessible.role: Accessible.AlertMessage
    Accessible.name: words

    Text {
        id: label

        x: Theme.margin
        y: Theme.points(14)
        width: parent.width - 2 * x
        text: banner.words
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
        width: Math.max(height, label.width * (banner.drops?.percent ?? 0) / 100)
        height: Theme.points(4)
        radius: height / 2
        color: Theme.accent
        visible: banner.busy
    }

    TapHandler {
        enabled: !banner.busy
        onTapped: banner.drops.passed()
    }
    Timer {
        interval: 5000
        running: banner.shown && !banner.busy && !(banner.drops?.failed ?? false)
        onTriggered: banner.drops.passed()
    }
}
