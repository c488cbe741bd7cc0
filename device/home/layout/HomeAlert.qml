import QtQuick
import DubrixControls
import DubrixHome

/// A question or a failure, over everything else until it is answered.
LayerScope {
    id: alert

    required property HomeScreen home
    readonly property bool shown: home.alertTitle !== ""

    signal closed

    enabled: shown
    Accessible.role: Accessible.LayeredPane
    opacity: shown ? 1 : 0
    visible: false
    // It can be pressed from the start, before anything of it is seen; and it comes anew while the
    // one before it still fades: those who hear the screen are told of nothing else.
    onShownChanged: {
        visible = !shown && opacity > 0;
        if (!shown)
            return closed();
        visible = true;
        box.forceActiveFocus();
    }
    onOpacityChanged: if (opacity === 0)
        visible = shown

    Behavior on opacity {
        NumberAnimation {
            duration: Theme.duration(140)
        }
    }

    AlertBox {
        id: box

        property string action: ""
        readonly property bool asks: action !== ""

        anchors.fill: parent
        focus: true
        title: ""
        message: ""
        buttons: asks ? [qsTr("Cancel"), action] : [qsTr("OK")]
        startButton: 0
        cancelButton: 0
        dangerousButton: asks ? 1 : -1
        onPressed: button => button === 0 ? alert.home.alertDismissed() : alert.home.alertAccepted()
    }

    // What it says is kept while it fades.
    Binding {
        box.title: alert.home.alertTitle
        box.message: alert.home.alertText
        box.action: alert.home.alertAction
        when: alert.shown
        restoreMode: Binding.RestoreNone
    }
}
