import QtQuick

/// Tells what is being done and how far it is, or a passing remark, perhaps with something to do about
/// it; it comes and goes again. What is not being done goes by a tap, and by itself unless it is to
/// stay.
Pressable {
    id: banner

    /// What it says; nothing is shown while this is empty.
    required property string words
    /// Whether `words` are of something under way, of which `percent` is done (-1 when nothing tells).
    property bool busy: false
    property int percent: -1
    property bool stays: false
    /// What can be done about it; empty when nothing can.
    property string action: ""
    /// Where it ends at the bottom.
    required property real line

    readonly property bool shown: words !== ""

    signal passed
    signal acted
    /// What had the keyboard has gone.
    signal focusLost

    y: line - height + (shown ? 0 : Theme.points(20))
    height: label.height + Theme.points(busy ? 40 : 28)
    opacity: shown ? 1 : 0
    visible: shown || opacity > 0 // can be pressed from the start
    activeFocusOnTab: false
    // Kept while it goes.
    onWordsChanged: if (words !== "")
        label.text = words
    onTapped: if (!busy)
        passed()
    Accessible.ignored: true

    Behavior on y {
        NumberAnimation {
            duration: Theme.duration(240)
            easing.type: Easing.OutCubic
        }
    }
    Behavior on opacity {
        NumberAnimation {
            duration: Theme.duration(240)
        }
    }

    Announcement {
        anchors.fill: parent
        words: banner.words
        Accessible.onPressAction: banner.press()
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.points(15)
        color: Theme.alert
        border.width: 1
        border.color: Theme.separator
    }

    Text {
        id: label

        x: Theme.margin
        y: Theme.points(14)
        width: parent.width - 2 * x - (button.visible ? button.width : 0)
        color: Theme.text
        font.pixelSize: Theme.remarkSize
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        maximumLineCount: 8
        elide: Text.ElideRight
        textFormat: Text.PlainText
        Accessible.ignored: true
    }

    Rectangle {
        anchors {
            left: label.left
            right: label.right
            top: label.bottom
            topMargin: Theme.points(10)
        }
        height: Theme.points(5)
        radius: height / 2
        color: Theme.separator
        visible: banner.busy
        Accessible.role: Accessible.ProgressBar
        Accessible.name: qsTr("Progress")
        Accessible.description: qsTr("%1 percent").arg(Math.max(0, banner.percent))

        Rectangle {
            width: Math.max(height, parent.width * banner.percent / 100)
            height: parent.height
            radius: parent.radius
            color: Theme.accent
        }
    }

    TextButton {
        id: button

        anchors {
            right: parent.right
            rightMargin: Theme.points(8)
            verticalCenter: label.verticalCenter
        }
        text: banner.action
        visible: banner.shown && text !== ""
        Accessible.ignored: !visible
        onTapped: banner.acted()
        onVisibleChanged: if (!visible && focus)
            banner.focusLost()
    }

    Timer {
        interval: 5000
        running: banner.shown && !banner.busy && !banner.stays
        onTriggered: banner.passed()
    }
}
