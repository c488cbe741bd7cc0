import QtQuick
import DubrixHome

/// What is being done and how far it is, or a passing remark; comes and goes again.
Rectangle {
    id: banner

    required property HomeScreen home
    /// Where it ends at the bottom.
    required property real line
    readonly property bool busy: home.errand !== ""
    readonly property bool shown: busy || home.remark !== ""
    property string words: ""

    y: line - height - (shown ? 0 : -HomeTheme.points(20))
    height: label.height + HomeTheme.points(busy ? 38 : 26)
    radius: HomeTheme.points(16)
    color: HomeTheme.card
    border.width: 1
    border.color: HomeTheme.separator
    opacity: shown ? 1 : 0
    visible: opacity > 0
    onShownChanged: keepWords()
    onBusyChanged: keepWords()
    Accessible.role: Accessible.AlertMessage
    Accessible.name: words

    function keepWords() {
        if (shown)
            words = Qt.binding(() => banner.busy ? banner.home.errand : banner.home.remark || banner.words);
    }

    Behavior on y {
        NumberAnimation {
            duration: HomeTheme.duration(240)
            easing.type: Easing.OutCubic
        }
    }
    Behavior on opacity {
        NumberAnimation {
            duration: HomeTheme.duration(240)
        }
    }

    Text {
        id: label

        x: HomeTheme.margin
        y: HomeTheme.points(13)
        width: parent.width - 2 * x
        text: banner.words
        color: HomeTheme.ink
        font.pixelSize: HomeTheme.bodySize
        wrapMode: Text.Wrap
        maximumLineCount: 3
        elide: Text.ElideRight
        horizontalAlignment: Text.AlignHCenter
        textFormat: Text.PlainText
        Accessible.ignored: true
    }

    Rectangle {
        anchors {
            left: label.left
            right: label.right
            top: label.bottom
            topMargin: HomeTheme.points(10)
        }
        height: HomeTheme.points(5)
        radius: height / 2
        color: HomeTheme.separator
        visible: banner.busy
        Accessible.role: Accessible.ProgressBar
        Accessible.name: qsTr("Progress")
        Accessible.description: qsTr("%1 percent").arg(Math.max(0, banner.home.percent))

        Rectangle {
            width: Math.max(height, parent.width * Math.max(0, banner.home.percent) / 100)
            height: parent.height
            radius: parent.radius
            color: HomeTheme.accent
        }
    }

    Timer {
        interval: 5000
        running: banner.home.remark !== ""
        onTriggered: banner.home.remarkPassed()
    }
}
