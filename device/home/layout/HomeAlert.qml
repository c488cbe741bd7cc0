import QtQuick
import DubrixHome

/// A question or a failure, over everything else until it is answered.
LayerScope {
    id: alert

    required property HomeScreen home
    readonly property bool shown: home.alertTitle !== ""
    readonly property bool asks: action !== ""

    // Kept while the alert fades.
    property string title: ""
    property string text: ""
    property string action: ""

    signal closed

    enabled: shown
    Accessible.role: Accessible.LayeredPane
    opacity: shown ? 1 : 0
    visible: opacity > 0
    onShownChanged: shown ? dismiss.forceActiveFocus() : closed()

    Binding {
        alert.title: alert.home.alertTitle
        alert.text: alert.home.alertText
        alert.action: alert.home.alertAction
        when: alert.shown
        restoreMode: Binding.RestoreNone
    }
    Keys.onEscapePressed: alert.home.alertDismissed()
    Keys.onLeftPressed: dismiss.forceActiveFocus()
    Keys.onRightPressed: if (alert.asks) accept.forceActiveFocus()

    Behavior on opacity {
        NumberAnimation {
            duration: HomeTheme.duration(140)
        }
    }

    Rectangle {
        anchors.fill: parent
        color: HomeTheme.dim

        // Nothing below is to be had meanwhile.
        TapHandler {
            gesturePolicy: TapHandler.ReleaseWithinBounds
        }
    }

    Rectangle {
        anchors.centerIn: parent
        width: Math.min(alert.width - 2 * HomeTheme.margin, HomeTheme.points(300))
        height: words.height + dismiss.height
        radius: HomeTheme.points(16)
        color: HomeTheme.card
        border.width: 1
        border.color: HomeTheme.separator
        Accessible.role: Accessible.AlertMessage
        Accessible.name: alert.title
        Accessible.description: alert.text

        Column {
            id: words

            width: parent.width
            padding: HomeTheme.points(18)
            spacing: HomeTheme.points(6)

            Text {
                width: parent.width - 2 * parent.padding
                text: alert.title
                color: HomeTheme.ink
                font.pixelSize: HomeTheme.titleSize
                font.weight: Font.DemiBold
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                maximumLineCount: 4
                elide: Text.ElideRight
                textFormat: Text.PlainText
            }
            Text {
                width: parent.width - 2 * parent.padding
                text: alert.text
                color: HomeTheme.ink
                font.pixelSize: HomeTheme.bodySize
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                maximumLineCount: 8
                elide: Text.ElideRight
                textFormat: Text.PlainText
            }
        }

        CardButton {
            id: dismiss

            anchors.bottom: parent.bottom
            width: alert.asks ? parent.width / 2 : parent.width
            text: alert.asks ? qsTr("Cancel") : qsTr("OK")
            strong: !alert.asks
            lineAbove: true
            onTapped: alert.home.alertDismissed()
        }
        CardButton {
            id: accept

            anchors {
                bottom: parent.bottom
                right: parent.right
            }
            width: parent.width / 2
            visible: alert.asks
            text: alert.action
            dangerous: true
            strong: true
            lineAbove: true
            lineLeft: true
            onTapped: alert.home.alertAccepted()
        }
    }
}
